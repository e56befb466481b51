// SPDX-License-Identifier: MIT
// Serial ports of the machine, their lasting names and who holds them.
#include "host/line/port_list.h"

#include "common/port_claim.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>

#include <grp.h>
#include <sys/stat.h>

#include <algorithm>

namespace dx4::host {
namespace {

QVector<PortHolder> listed(const std::vector<common::PortHolder> &holders)
{
    QVector<PortHolder> list;
    for (const common::PortHolder &holder : holders)
        list.append({ holder.process, QFile::decodeName(holder.program.c_str()), holder.isFarEnd });
    return list;
}

} // namespace

QVector<PortInfo> listPorts(const QString &nameFolder)
{
    QVector<PortInfo> ports;
    const auto found = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : found) {
        const QString device = port.systemLocation();
        ports.append(
            { device, lastingName(device, nameFolder), port.description(), holdersOf(device) });
    }
    std::sort(ports.begin(), ports.end(),
              [](const PortInfo &a, const PortInfo &b) { return a.device < b.device; });
    return ports;
}

QString lastingName(const QString &device, const QString &nameFolder)
{
    const QFileInfoList links = QDir(nameFolder).entryInfoList(QDir::Files | QDir::System);
    for (const QFileInfo &link : links) {
        if (link.canonicalFilePath() == device)
            return link.filePath();
    }
    return {};
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
    return listed(common::holdersOf(QFile::encodeName(device).toStdString()));
}

QVector<PortHolder> strangersOn(const QString &device)
{
    return listed(common::strangersOn(QFile::encodeName(device).toStdString()));
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
    std::vector<common::PortHolder> same;
    for (const PortHolder &holder : holders)
        same.push_back({ holder.process, holder.program.toStdString(), holder.isFarEnd });
    return QString::fromStdString(common::holderText(same));
}

} // namespace dx4::host
