// SPDX-License-Identifier: MIT
// Whether a library's file is whole, looked at before it is mapped.
#pragma once

#include <QByteArray>
#include <QString>

namespace dx4::host {

/// What is wrong with the bytes of a shared library of this machine; empty where nothing is.
///
/// The loader maps what the file's head announces. Where the file is shorter the first access
/// behind its end ends the program by SIGBUS, which nobody can catch in good order.
QString wrongInElf(const QByteArray &bytes);

} // namespace dx4::host
