// SPDX-License-Identifier: MIT
// A shared library, loaded from its file or from a copy of it.
#pragma once

#include <QString>

namespace dx4::host {

/// One loaded library. A file that is cut short, for another machine or built for another Qt is
/// refused before the loader maps it: the first access behind its end, or its first string, would
/// end the program.
class LibraryFile {
public:
    /// Loads the file itself. Where it cannot be, handle() is null.
    ///
    /// @param path   absolute
    /// @param error  out: why not; may be null
    static LibraryFile open(const QString &path, QString *error);

    /// Loads a copy that shares nothing with the file or other copies: from the folder for
    /// temporary files (TMPDIR), where that is full or holds no programs from XDG_RUNTIME_DIR, else
    /// from memory. No file is left behind.
    static LibraryFile openCopy(const QString &path, QString *error);

    LibraryFile(LibraryFile &&other) noexcept;
    LibraryFile &operator=(LibraryFile &&) = delete;
    ~LibraryFile(); ///< unloads it

    /// As dlopen() gives it.
    void *handle() const { return m_handle; }

private:
    explicit LibraryFile(void *handle = nullptr, int descriptor = -1);

    void *m_handle;
    int m_descriptor; ///< of a copy in memory, whose name holds its number; -1: none
};

} // namespace dx4::host
