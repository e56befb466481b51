// SPDX-License-Identifier: MIT
// The entry points of the driver that is linked into the fuzz target.
#pragma once

#include "pair.h"

inline model::EntryPoints linkedEntryPoints()
{
    return { intf_getProtocolType,
             intf_getDriverParameter,
             intf_getDriverPropertyPage,
             intf_SetDriverPropertyPage,
             intf_setAddrValueChangeCallBack,
             intf_initProperty,
             intf_getRegListByType,
             intf_getRegDiscription,
             intf_checkAddrValidity,
             intf_checkAddr,
             intf_multiCopy,
             intf_setRcpAddress,
             intf_addrMerge,
             intf_getSendFrame,
             intf_addConditionRead,
             intf_dealRcvFrame,
             intf_getData,
             intf_setData,
             &driver };
}
