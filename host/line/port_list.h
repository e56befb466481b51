// SPDX-License-Identifier: MIT
// Serial ports of the machine, their lasting names and who holds them.
#pragma once

#include <QString>
#include <QVector>

namespace dx4::host {

/// Where the system keeps names that stay when an adapter is plugged into another socket.
inline constexpr const char *portNameFolder = "/dev/serial/by-id";

/// A process that has a port open.
struct PortHolder {
    int process = 0;
    QString program; ///< name of its file
    bool isFarEnd = false; ///< it is the other end of a pseudo-terminal, as a simulator is
};

struct PortInfo {
    QString device; ///< "/dev/ttyUSB0"
    QString lastingName; ///< path in portNameFolder; empty when the system gives none
    QString description; ///< what the adapter says of itself; may be empty
    QVector<PortHolder> holders; ///< as far as this user may see them
};

/// Serial ports of the machine, by device.
///
/// @param nameFolder  looked through for lasting names
QVector<PortInfo> listPorts(const QString &nameFolder = QString::fromLatin1(portNameFolder));

/// Lasting name of a device.
///
/// @param device  with its links resolved
/// @return path in `nameFolder`; empty when the system gives none
QString lastingName(const QString &device,
                    const QString &nameFolder = QString::fromLatin1(portNameFolder));

/// Device behind a name: a path or link as it is meant at this moment, a lasting name without its
/// folder ("usb-FTDI_..."), or a device without "/dev" ("ttyUSB0"). A name with a slash in it is a
/// path, a relative one from the working folder on ("./drive").
///
/// @return path of the device, links resolved; a name that leads nowhere comes back as a path in
///         /dev, for messages
QString portDevice(const QString &name,
                   const QString &nameFolder = QString::fromLatin1(portNameFolder));

/// Processes that have a device open, this one included, by number. Processes of other users show
/// only to root.
QVector<PortHolder> holdersOf(const QString &device);

/// Other programs that would talk on the same line: holders of the device, under whatever name they
/// opened it, without this process and without the far end of a pseudo-terminal.
QVector<PortHolder> strangersOn(const QString &device);

/// Who may open a port that this user may not, and how to become one of them.
QString permissionText(const QString &device);

/// "dx4 (process 812), minicom (process 901)"; says so when none can be seen.
QString holderText(const QVector<PortHolder> &holders);

} // namespace dx4::host
