// SPDX-License-Identifier: MIT
// The built plug-in, loaded by file, with its plain names as typed pointers.
#include "loaded_driver.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void failToLoad(const char *what)
{
    std::fprintf(stderr, "cannot load the driver: %s\n", what);
    std::abort();
}

template <typename Pointer> void resolve(void *library, const char *name, Pointer &pointer)
{
    void *symbol = dlsym(library, name);
    if (!symbol)
        failToLoad(dlerror());
    pointer = reinterpret_cast<Pointer>(symbol);
}

} // namespace

LoadedDriver::LoadedDriver(const std::string &file)
    : m_library(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!m_library)
        failToLoad(dlerror());
    resolve(m_library, "intf_getProtocolType", getProtocolType);
    resolve(m_library, "intf_getDriverParameter", getDriverParameter);
    resolve(m_library, "intf_getDriverPropertyPage", getDriverPropertyPage);
    resolve(m_library, "intf_SetDriverPropertyPage", setDriverPropertyPage);
    resolve(m_library, "intf_setAddrValueChangeCallBack", setAddrValueChangeCallBack);
    resolve(m_library, "intf_initProperty", initProperty);
    resolve(m_library, "intf_getRegListByType", getRegListByType);
    resolve(m_library, "intf_getRegDiscription", getRegDiscription);
    resolve(m_library, "intf_checkAddrValidity", checkAddrValidity);
    resolve(m_library, "intf_checkAddr", checkAddr);
    resolve(m_library, "intf_multiCopy", multiCopy);
    resolve(m_library, "intf_setRcpAddress", setRcpAddress);
    resolve(m_library, "intf_addrMerge", addrMerge);
    resolve(m_library, "intf_getSendFrame", getSendFrame);
    resolve(m_library, "intf_addConditionRead", addConditionRead);
    resolve(m_library, "intf_dealRcvFrame", dealRcvFrame);
    resolve(m_library, "intf_getData", getData);
    resolve(m_library, "intf_setData", setData);
    resolve(m_library, "driver", state);
}

LoadedDriver::~LoadedDriver()
{
    dlclose(m_library);
}
