// SPDX-License-Identifier: MIT
// Files that are replaced as a whole or not at all, and read as a whole.
#include "host/base/whole_file.h"

#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dx4::host {
namespace {

constexpr int mostLinks = 40; // as the system follows them
constexpr mode_t newFileMode = 0666; // less what the user's mask takes away
constexpr mode_t modeBits = 07777;
constexpr qint64 mostRead = 16 * 1024 * 1024; // bytes

void tell(QString *error, const QString &what)
{
    if (error)
        *error = what;
}

/// The file that a path leads to, which need not exist.
QString withoutLinks(const QString &path)
{
    QString target = path;
    for (int i = 0; i < mostLinks && QFileInfo(target).isSymLink(); ++i)
        target = QFile::symLinkTarget(target);
    return target;
}

QString folderOf(const QString &path)
{
    return QFileInfo(path).absolutePath();
}

/// A file that was not there before. The name is short, so that it fits wherever the other one did.
int createBeside(const QString &target, QString *newPath)
{
    static std::atomic<int> files { 0 };
    for (;;) {
        *newPath =
            QStringLiteral("%1/.dx4-%2-%3.new").arg(folderOf(target)).arg(getpid()).arg(++files);
        const int descriptor = ::open(QFile::encodeName(*newPath).constData(),
                                      O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
        if (descriptor >= 0 || errno != EEXIST)
            return descriptor;
    }
}

/// Gives the new file what the old one has. Another owner is root's to give.
void takeOver(int descriptor, const struct stat &old)
{
    [[maybe_unused]] const int owned = fchown(descriptor, old.st_uid, old.st_gid);
    [[maybe_unused]] const int set = fchmod(descriptor, old.st_mode & modeBits);
}

/// A name that was given anew outlives a power cut only with its folder on the disk.
void syncFolder(const QString &folder)
{
    const int descriptor =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    ::close(descriptor);
}

} // namespace

FileReplacement::FileReplacement(const QString &path)
    : m_path(path)
    , m_target(withoutLinks(path))
{
}

FileReplacement::~FileReplacement()
{
    if (!m_newPath.isEmpty())
        QFile::remove(m_newPath);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool FileReplacement::mayReplace()
{
    // By the name as it was given: the system refuses more links than withoutLinks() follows.
    const QByteArray path = QFile::encodeName(m_path);
    struct stat old { };
    if (stat(path.constData(), &old) != 0)
        return errno == ENOENT || failBySystem();
    if (S_ISDIR(old.st_mode))
        return fail(QStringLiteral("is a folder; name a file"));
    if (!S_ISREG(old.st_mode))
        return fail(QStringLiteral("is a device or a pipe; name a file"));
    return faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) == 0 || failBySystem();
}

bool FileReplacement::open()
{
    if (!mayReplace())
        return false;
    QString newPath;
    m_descriptor = createBeside(m_target, &newPath);
    if (m_descriptor < 0)
        return failByFolder();
    m_newPath = newPath;
    struct stat old { };
    if (stat(QFile::encodeName(m_target).constData(), &old) == 0)
        takeOver(m_descriptor, old);
    return true;
}

bool FileReplacement::write(const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count = ::write(m_descriptor, bytes.constData() + done,
                                      static_cast<std::size_t>(bytes.size() - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failBySystem();
        done += count;
    }
    return true;
}

bool FileReplacement::putInPlace()
{
    // A network's or a full disk's refusal may come no sooner than this.
    if (fsync(m_descriptor) != 0 && errno != EINVAL)
        return failBySystem();
    if (std::rename(QFile::encodeName(m_newPath).constData(),
                    QFile::encodeName(m_target).constData())
        != 0)
        return failBySystem();
    m_newPath.clear();
    syncFolder(folderOf(m_target));
    return true;
}

int FileReplacement::takeDescriptor()
{
    return std::exchange(m_descriptor, -1);
}

bool FileReplacement::fail(const QString &why)
{
    m_error = QStringLiteral("%1: %2").arg(m_path, why);
    return false;
}

bool FileReplacement::failBySystem()
{
    return fail(qt_error_string(errno));
}

bool FileReplacement::failByFolder()
{
    const QString why = qt_error_string(errno);
    const QString folder = folderOf(m_target);
    return QFileInfo::exists(folder)
        ? fail(QStringLiteral("its folder %1 takes no new file: %2").arg(folder, why))
        : fail(why);
}

bool replaceFile(const QString &path, const QByteArray &bytes, QString *error)
{
    const bool wasThere = QFileInfo::exists(path);
    FileReplacement file(path);
    if (file.open() && file.write(bytes) && file.putInPlace())
        return true;
    tell(error, file.error() + (wasThere ? QStringLiteral("; the file is as it was") : QString()));
    return false;
}

bool canReplaceFile(const QString &path, QString *error)
{
    FileReplacement file(path);
    if (file.open())
        return true;
    tell(error, file.error());
    return false;
}

std::optional<QByteArray> readWholeFile(const QString &path, QString *why)
{
    QFile file(path);
    QByteArray bytes;
    QByteArray part;
    if (file.open(QIODevice::ReadOnly)) {
        do { // a pipe hands over less than was asked for
            part = file.read(mostRead + 1 - bytes.size());
            bytes += part;
        } while (!part.isEmpty());
    }
    if (file.error() != QFileDevice::NoError) {
        tell(why, file.errorString());
        return std::nullopt;
    }
    if (bytes.size() <= mostRead)
        return bytes;
    tell(why, QStringLiteral("longer than 16 MiB; no such file is"));
    return std::nullopt;
}

} // namespace dx4::host
