// SPDX-License-Identifier: MIT
// What the driver says of itself, and the host's callback.
#include "driver_api.h"
#include "korvane_dx4/call_watch.h"

using namespace dx4;

namespace {

constexpr int serialProtocol = 0;

// Port, speed in bit/s, data bits, parity, stop bits, two flags, IP address and port, driver name,
// register types.
constexpr char defaultParameter[] =
    "0,9600,8,NONE,1,0,1,192.168.0.1,8888,korvane_dx4,F,D,CW,SW,FRE,FU";

} // namespace

void intf_getProtocolType(int *type)
{
    if (type)
        *type = serialProtocol;
}

void intf_getDriverParameter(QString &text)
{
    text = QLatin1String(defaultParameter);
}

void intf_getDriverPropertyPage(QString &text)
{
    text = QLatin1String("0_0");
}

// Deliberate: it takes nothing from the host and empties the text it is given.
void intf_SetDriverPropertyPage(QString &text)
{
    text = QLatin1String("");
}

void intf_setAddrValueChangeCallBack(ValueChangeCallback callback)
{
    [[maybe_unused]] const CallWatch watch("intf_setAddrValueChangeCallBack");
    driver.valueChangeCallback = callback;
}
