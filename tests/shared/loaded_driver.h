// SPDX-License-Identifier: MIT
// The built plug-in, loaded by file, with its plain names as typed pointers.
#pragma once

#include "driver_api.h"

#include <string>

/// One dlopen of the driver's file; unloaded again when it goes out of scope.
class LoadedDriver {
public:
    /// Loads `file` with RTLD_NOW and resolves every name; ends the test program when one is
    /// missing.
    explicit LoadedDriver(const std::string &file = KORVANE_PLUGIN_FILE);
    ~LoadedDriver();
    LoadedDriver(const LoadedDriver &) = delete;
    LoadedDriver &operator=(const LoadedDriver &) = delete;

    decltype(&intf_getProtocolType) getProtocolType;
    decltype(&intf_getDriverParameter) getDriverParameter;
    decltype(&intf_getDriverPropertyPage) getDriverPropertyPage;
    decltype(&intf_SetDriverPropertyPage) setDriverPropertyPage;
    decltype(&intf_setAddrValueChangeCallBack) setAddrValueChangeCallBack;
    decltype(&intf_initProperty) initProperty;
    decltype(&intf_getRegListByType) getRegListByType;
    decltype(&intf_getRegDiscription) getRegDiscription;
    decltype(&intf_checkAddrValidity) checkAddrValidity;
    decltype(&intf_checkAddr) checkAddr;
    decltype(&intf_multiCopy) multiCopy;
    decltype(&intf_setRcpAddress) setRcpAddress;
    decltype(&intf_addrMerge) addrMerge;
    decltype(&intf_getSendFrame) getSendFrame;
    decltype(&intf_addConditionRead) addConditionRead;
    decltype(&intf_dealRcvFrame) dealRcvFrame;
    decltype(&intf_getData) getData;
    decltype(&intf_setData) setData;
    korvane_dx4 *state; ///< the plug-in's own `driver`

private:
    void *m_library;
};
