// SPDX-License-Identifier: MIT
// Files that are replaced as a whole or not at all, and read as a whole.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace dx4::host {

/// A new file that grows beside another one and takes its place and name at one stroke. Until then,
/// and whatever goes wrong before, the other one is as it was.
///
/// The folder has to take a new file. A link stays, the file that it leads to is replaced. Mode
/// and, as far as this user may, owner stay. Only regular files are replaced: a device would lose
/// its name, and the open of a pipe may wait for ever.
class FileReplacement {
public:
    explicit FileReplacement(const QString &path);
    ~FileReplacement(); ///< removes the new file where it was not put in place
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    /// Begins the new file. @return false with error() set, as are the others
    bool open();

    /// Hands all bytes to the system.
    bool write(const QByteArray &bytes);

    /// Brings the new file to the disk, as far as the system can tell, and puts it in place.
    bool putInPlace();

    /// The open file, put in place or not, for whoever goes on writing and closes it; once.
    int takeDescriptor();

    /// "FILE: why", what went wrong; empty: nothing did.
    const QString &error() const { return m_error; }

private:
    bool fail(const QString &why);
    bool failBySystem();
    bool failByFolder();
    bool mayReplace();

    QString m_path; ///< as it was named, for messages
    QString m_target; ///< with links followed
    QString m_newPath; ///< empty: there is no new file
    int m_descriptor = -1;
    QString m_error;
};

/// Replaces a file by these bytes, or makes it.
///
/// @param error  out: which file and why it could not be; the file is then as it was; may be null
bool replaceFile(const QString &path, const QByteArray &bytes, QString *error);

/// Whether replaceFile() would find what it needs, asked before there is anything to lose; leaves
/// everything as it is. A disk that is full is noticed by replaceFile() alone.
///
/// @param error  out: which file and why not; may be null
bool canReplaceFile(const QString &path, QString *error);

/// Reads a file that a person wrote, or a pipe: up to 16 MiB, more is none.
///
/// @param why  out: why not, without the file's name; may be null
std::optional<QByteArray> readWholeFile(const QString &path, QString *why);

} // namespace dx4::host
