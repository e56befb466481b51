// SPDX-License-Identifier: MIT
// Serial ports of the machine, their lasting names and who holds them.
#include "host/port_list.h"

#include "host/number_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <QStringList>

#include <grp.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>

namespace dx4::host {
namespace {

/// The device that a path names; 0 for none.
dev_t deviceNumber(const QString &path)
{
    struct stat status { };
    const bool isDevice =
        stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISCHR(status.st_mode);
    return isDevice ? status.st_rdev : 0;
}

constexpr unsigned firstTerminalMajor = 136; // of pseudo-terminals, the first million of them

bool hasOpen(const QString &processFolder, dev_t device)
{
    const QDir descriptors(processFolder + QStringLiteral("/fd"));
    const QStringList names = descriptors.entryList(QDir::Files | QDir::System | QDir::Hidden);
    return std::any_of(names.begin(), names.end(), [&](const QString &name) {
        return deviceNumber(descriptors.filePath(name)) == device;
    });
}

/// Whether a process has the far end of a pseudo-terminal open.
bool hasFarEnd(const QString &processFolder, dev_t device)
{
    if (major(device) != firstTerminalMajor)
        return false;
    const QByteArray index = "tty-index:\t" + QByteArray::number(minor(device)) + '\n';
    const QDir descriptors(processFolder + QStringLiteral("/fdinfo"));
    const QStringList names = descriptors.entryList(QDir::Files);
    return std::any_of(names.begin(), names.end(), [&](const QString &name) {
        QFile information(descriptors.filePath(name)); // only far ends have such a line
        return information.open(QIODevice::ReadOnly) && information.readAll().contains(index);
    });
}

QString programOf(const QString &processFolder)
{
    const QString file = QFile::symLinkTarget(processFolder + QStringLiteral("/exe"));
    if (!file.isEmpty())
        return QFileInfo(file).fileName();
    QFile name(processFolder + QStringLiteral("/comm"));
    return name.open(QIODevice::ReadOnly) ? QString::fromUtf8(name.readAll()).trimmed() : QString();
}

QString lastingNameOf(const QString &device, const QString &nameFolder)
{
    const QFileInfoList links = QDir(nameFolder).entryInfoList(QDir::Files | QDir::System);
    for (const QFileInfo &link : links) {
        if (link.canonicalFilePath() == device)
            return link.filePath();
    }
    return {};
}

} // namespace

QVector<PortInfo> listPorts(const QString &nameFolder)
{
    QVector<PortInfo> ports;
    const auto found = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : found) {
        const QString device = port.systemLocation();
        ports.append(
            { device, lastingNameOf(device, nameFolder), port.description(), holdersOf(device) });
    }
    std::sort(ports.begin(), ports.end(),
              [](const PortInfo &a, const PortInfo &b) { return a.device < b.device; });
    return ports;
}

QString portDevice(const QString &name, const QString &nameFolder)
{
    const bool isPath = name.contains(QLatin1Char('/'));
    const QString lasting = isPath ? name : QDir(nameFolder).filePath(name);
    const QString path =
        isPath || QFileInfo::exists(lasting) ? lasting : QStringLiteral("/dev/") + name;
    const QString device = QFileInfo(path).canonicalFilePath();
    return device.isEmpty() ? path : device;
}

QVector<PortHolder> holdersOf(const QString &device)
{
    QVector<PortHolder> holders;
    const dev_t number = deviceNumber(device);
    if (number == 0)
        return holders;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        const std::optional<int> process = parseWholeNumber(entry);
        const QString folder = QStringLiteral("/proc/") + entry;
        if (process && hasOpen(folder, number))
            holders.append({ *process, programOf(folder), hasFarEnd(folder, number) });
    }
    std::sort(holders.begin(), holders.end(),
              [](const PortHolder &a, const PortHolder &b) { return a.process < b.process; });
    return holders;
}

QVector<PortHolder> strangersOn(const QString &device)
{
    QVector<PortHolder> strangers;
    for (const PortHolder &holder : holdersOf(device)) {
        if (!holder.isFarEnd && holder.process != getpid())
            strangers.append(holder);
    }
    return strangers;
}

QString permissionText(const QString &device)
{
    struct stat status { };
    if (stat(QFile::encodeName(device).constData(), &status) != 0)
        return QStringLiteral("no permission");
    const group *owners = getgrgid(status.st_gid);
    const bool isShared = (status.st_mode & S_IRGRP) != 0 && (status.st_mode & S_IWGRP) != 0;
    if (!owners || !isShared)
        return QStringLiteral("no permission; its owner alone may open it");
    return QStringLiteral("no permission; group %1 has it: \"sudo usermod -aG %1 $USER\" joins it, "
                          "from the next login on")
        .arg(QString::fromLocal8Bit(owners->gr_name));
}

QString holderText(const QVector<PortHolder> &holders)
{
    QStringList texts;
    for (const PortHolder &holder : holders)
        texts.append(QStringLiteral("%1 (process %2)").arg(holder.program).arg(holder.process));
    return texts.isEmpty() ? QStringLiteral("a program of another user")
                           : texts.join(QStringLiteral(", "));
}

} // namespace dx4::host
