// SPDX-License-Identifier: MIT
// A shared library, loaded from its file or from a copy of it.
#include "host/link/library_file.h"

#include "host/link/elf_check.h"
#include "host/link/elf_machine.h"
#include "host/link/elf_needs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <utility>

namespace dx4::host {
namespace {

void tell(QString *error, const QString &what)
{
    if (error)
        *error = what;
}

QString systemReason()
{
    return qt_error_string(errno);
}

/// What is wrong with the bytes of a library; empty where it may be loaded.
QString wrongIn(const QByteArray &bytes)
{
    // Of another machine's file no record can be read, of one that is cut short not all.
    QString wrong = wrongMachineOfElf(bytes, ownMachine());
    if (wrong.isEmpty())
        wrong = wrongInElf(bytes);
    return wrong.isEmpty() ? wrongQtOfElf(bytes, QT_VERSION_MAJOR) : wrong;
}

/// The bytes of a library that is whole, for this machine and for this Qt.
std::optional<QByteArray> read(const QString &path, QString *why)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) { // to open a pipe may take for ever
        *why = QStringLiteral("it is a folder, a device or a pipe");
        return std::nullopt;
    }
    QFile file(path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *why = file.errorString();
        return std::nullopt;
    }
    *why = wrongIn(bytes);
    return why->isEmpty() ? std::optional(bytes) : std::nullopt;
}

void *openLibrary(const QByteArray &path)
{
    return dlopen(path.constData(), RTLD_NOW | RTLD_LOCAL);
}

/// A disk that fills up takes a part, and gives the reason with the rest.
bool writeAll(int descriptor, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count = ::write(descriptor, bytes.constData() + done,
                                      static_cast<std::size_t>(bytes.size() - done));
        if (count >= 0)
            done += count;
        else if (errno != EINTR)
            return false;
    }
    return true;
}

bool holdsNoPrograms(const QByteArray &folder)
{
    struct statvfs system { };
    return statvfs(folder.constData(), &system) == 0 && (system.f_flag & ST_NOEXEC) != 0;
}

/// One copy of a library, tried in place after place.
class Copy {
public:
    explicit Copy(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }

    /// The loader takes two files for one when their names or their inodes are equal, so each copy
    /// gets a name that this process never used before. The file may go at once: the mapping stays.
    void *openIn(const QString &folder)
    {
        static std::atomic<int> copies { 0 };
        const QByteArray place = QFile::encodeName(folder);
        if (holdsNoPrograms(place))
            return miss(folder, QStringLiteral("mounted noexec"));
        QByteArray path = place + "/korvane_dx4-" + QByteArray::number(getpid()) + '-'
            + QByteArray::number(++copies) + "-XXXXXX.so";
        const int descriptor = mkostemps(path.data(), 3, O_CLOEXEC);
        if (descriptor < 0)
            return miss(folder, systemReason());
        const bool isWhole = writeAll(descriptor, m_bytes);
        void *handle = isWhole ? openedAt(path) : miss(folder, systemReason());
        unlink(path.constData());
        ::close(descriptor);
        return handle;
    }

    /// The descriptor stays open as long as the library is loaded, so that no other copy gets its
    /// number and with it its name.
    void *openInMemory(int *descriptor)
    {
        const QString place = QStringLiteral("memory");
        *descriptor = memfd_create("korvane_dx4", MFD_CLOEXEC);
        if (*descriptor < 0 || !writeAll(*descriptor, m_bytes))
            return miss(place, systemReason());
        return openedAt("/proc/self/fd/" + QByteArray::number(*descriptor));
    }

    /// Why none could be opened: what the loader said last, or what each place said.
    QString reason(const QString &path) const
    {
        if (!m_loadError.isEmpty())
            return QStringLiteral("cannot load the driver %1: %2").arg(path, m_loadError);
        return QStringLiteral("cannot copy the driver %1: %2; set TMPDIR to a folder with room for "
                              "%3 bytes that may hold programs")
            .arg(path, m_misses.join(QStringLiteral(", ")))
            .arg(m_bytes.size());
    }

private:
    void *openedAt(const QByteArray &path)
    {
        void *handle = openLibrary(path);
        if (!handle)
            m_loadError = QString::fromLocal8Bit(dlerror());
        return handle;
    }

    void *miss(const QString &place, const QString &why)
    {
        m_misses.append(QStringLiteral("%1: %2").arg(place, why));
        return nullptr;
    }

    const QByteArray m_bytes;
    QStringList m_misses;
    QString m_loadError;
};

QStringList foldersForCopies()
{
    // Of a folder that is missing it gives no path, and a file in that would lie in the root
    // folder.
    const QString existing = QDir::tempPath();
    const QString temporary = existing.isEmpty() ? qEnvironmentVariable("TMPDIR") : existing;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QStringList folders { temporary };
    if (QDir::isAbsolutePath(runtime) && runtime != temporary)
        folders.append(runtime);
    return folders;
}

} // namespace

LibraryFile LibraryFile::open(const QString &path, QString *error)
{
    QString why;
    if (!read(path, &why)) {
        tell(error, QStringLiteral("cannot load the driver: %1: %2").arg(path, why));
        return LibraryFile();
    }
    void *handle = openLibrary(QFile::encodeName(path));
    if (!handle)
        tell(error,
             QStringLiteral("cannot load the driver: %1").arg(QString::fromLocal8Bit(dlerror())));
    return LibraryFile(handle);
}

LibraryFile LibraryFile::openCopy(const QString &path, QString *error)
{
    QString why;
    const auto bytes = read(path, &why);
    if (!bytes) {
        tell(error, QStringLiteral("cannot copy the driver %1: %2").arg(path, why));
        return LibraryFile();
    }
    Copy copy(*bytes);
    const QStringList folders = foldersForCopies();
    for (const QString &folder : folders) {
        if (void *handle = copy.openIn(folder))
            return LibraryFile(handle);
    }
    int descriptor = -1;
    void *handle = copy.openInMemory(&descriptor);
    if (!handle)
        tell(error, copy.reason(path));
    return LibraryFile(handle, descriptor);
}

LibraryFile::LibraryFile(void *handle, int descriptor)
    : m_handle(handle)
    , m_descriptor(descriptor)
{
}

LibraryFile::LibraryFile(LibraryFile &&other) noexcept
    : m_handle(std::exchange(other.m_handle, nullptr))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

LibraryFile::~LibraryFile()
{
    if (m_handle)
        dlclose(m_handle);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

} // namespace dx4::host
