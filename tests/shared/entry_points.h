// SPDX-License-Identifier: MIT
// The driver's plain names as typed pointers.
#pragma once

#include "driver_api.h"

/// The linked symbols or those of a loaded file.
struct EntryPoints {
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
    korvane_dx4 *state; ///< the driver's one object, `driver`
};
