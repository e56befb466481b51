// SPDX-License-Identifier: MIT
// What a library needs to be loaded, looked up in its file before anything of it runs.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace dx4::host {

/// Names of the libraries that an ELF file of this machine needs, in the file's order.
///
/// Reads nothing beyond the bytes, whatever they are.
///
/// @return nothing where a table, a name or the end of one lies outside the file
std::optional<QByteArrayList> neededLibraries(const QByteArray &bytes);

/// What keeps a library of this machine from sharing strings and lists with a program of Qt
/// `ownMajor`; empty where nothing does.
///
/// A plug-in of the other Qt may be loaded beside this one, and its first QString ends the program.
QString wrongQtOfElf(const QByteArray &bytes, int ownMajor);

} // namespace dx4::host
