// SPDX-License-Identifier: MIT
// The driver's file, loaded, with each of its names as a typed pointer.
#pragma once

#include "driver_api.h"
#include "host/link/library_file.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace dx4::host {

/// Every name of the driver, resolved. The pointers end with the Plugin that gave them.
struct DriverApi {
    decltype(&intf_getProtocolType) getProtocolType = nullptr;
    decltype(&intf_getDriverParameter) getDriverParameter = nullptr;
    decltype(&intf_getDriverPropertyPage) getDriverPropertyPage = nullptr;
    decltype(&intf_SetDriverPropertyPage) setDriverPropertyPage = nullptr;
    decltype(&intf_setAddrValueChangeCallBack) setAddrValueChangeCallBack = nullptr;
    decltype(&intf_initProperty) initProperty = nullptr;
    decltype(&intf_getRegListByType) getRegListByType = nullptr;
    decltype(&intf_getRegDiscription) getRegDiscription = nullptr;
    decltype(&intf_checkAddrValidity) checkAddrValidity = nullptr;
    decltype(&intf_checkAddr) checkAddr = nullptr;
    decltype(&intf_multiCopy) multiCopy = nullptr;
    decltype(&intf_setRcpAddress) setRcpAddress = nullptr;
    decltype(&intf_addrMerge) addrMerge = nullptr;
    decltype(&intf_getSendFrame) getSendFrame = nullptr;
    decltype(&intf_addConditionRead) addConditionRead = nullptr;
    decltype(&intf_dealRcvFrame) dealRcvFrame = nullptr;
    decltype(&intf_getData) getData = nullptr;
    decltype(&intf_setData) setData = nullptr;
    korvane_dx4 *state = nullptr; ///< the plug-in's own `driver`
};

/// Where the driver's file was looked for.
struct DriverFile {
    QString path; ///< absolute path of the file; empty when none was found
    QStringList tried; ///< paths looked at, in order
};

/// Finds the driver's file.
///
/// The first that names a path decides: `explicitPath`, then the environment variable
/// KORVANE_DRIVER. With neither, the places beside the running program are tried: its own folder,
/// the `lib` folder of a build tree and the library folder of an installation. So is the folder of
/// the plug-ins beside the shared host library, for a program that lies elsewhere.
///
/// @param explicitPath  what the user asked for; empty when nothing
DriverFile locateDriver(const QString &explicitPath = QString());

/// One loaded driver. The driver keeps one state per loaded file, so a second line in the same
/// process needs a private copy.
class Plugin {
public:
    enum class Instance {
        Shared, ///< the file itself; loading it twice gives the same state twice
        PrivateCopy, ///< a temporary copy with a state of its own, in memory where folders take
                     ///< none
    };

    /// Loads the driver and resolves all its names.
    ///
    /// @param file   path of the driver's file
    /// @param error  out: why it could not be loaded, or every missing name; may be null
    /// @return the plug-in, or null
    static std::unique_ptr<Plugin> load(const QString &file, Instance instance = Instance::Shared,
                                        QString *error = nullptr);

    /// Unloads the driver. No call into it may be in progress.
    ~Plugin();
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;

    const DriverApi &api() const { return m_api; }

    /// The path it was asked to load, also for a private copy.
    QString file() const { return m_file; }

private:
    Plugin(QString file, LibraryFile library);

    QString m_file;
    LibraryFile m_library;
    DriverApi m_api;
};

/// Gives the plug-in back.
///
/// @throws std::invalid_argument  for one that could not be loaded
std::unique_ptr<Plugin> notNull(std::unique_ptr<Plugin> plugin);

} // namespace dx4::host
