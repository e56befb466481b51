// SPDX-License-Identifier: MIT
// Serial ports of the machine, their lasting names and who holds them.
#include "host/port_list.h"

#include "host/number_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <QStringList>

#include <sys/stat.h>

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

bool hasOpen(const QString &processFolder, dev_t device)
{
    const QDir descriptors(processFolder + QStringLiteral("/fd"));
    const QStringList names = descriptors.entryList(QDir::Files | QDir::System | QDir::Hidden);
    return std::any_of(names.begin(), names.end(), [&](const QString &name) {
        return deviceNumber(descriptors.filePath(name)) == device;
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
    const bool isPath = name.startsWith(QLatin1Char('/'));
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
            holders.append({ *process, programOf(folder) });
    }
    std::sort(holders.begin(), holders.end(),
              [](const PortHolder &a, const PortHolder &b) { return a.process < b.process; });
    return holders;
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
