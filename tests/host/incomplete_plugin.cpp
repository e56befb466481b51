// SPDX-License-Identifier: MIT
// A library that has all of the driver's names but three.
#define OFFERED_NAME(name)                                                                         \
    extern "C" __attribute__((visibility("default"))) void name();                                 \
    void name() { }

OFFERED_NAME(intf_getProtocolType)
OFFERED_NAME(intf_getDriverParameter)
OFFERED_NAME(intf_getDriverPropertyPage)
OFFERED_NAME(intf_SetDriverPropertyPage)
OFFERED_NAME(intf_setAddrValueChangeCallBack)
OFFERED_NAME(intf_initProperty)
OFFERED_NAME(intf_getRegListByType)
OFFERED_NAME(intf_getRegDiscription)
OFFERED_NAME(intf_checkAddrValidity)
OFFERED_NAME(intf_checkAddr)
OFFERED_NAME(intf_setRcpAddress)
OFFERED_NAME(intf_addrMerge)
OFFERED_NAME(intf_getSendFrame)
OFFERED_NAME(intf_addConditionRead)
OFFERED_NAME(intf_dealRcvFrame)
OFFERED_NAME(intf_setData)
