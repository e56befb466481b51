// SPDX-License-Identifier: MIT
// How a service gets its line and its driver.
#include "host/service/line_factory.h"

#include "host/line/serial_line.h"

namespace dx4::host {

LineFactory serialLine(const LineSettings &settings, const QString &driverFile)
{
    return [settings, driverFile] {
        LineParts parts;
        parts.line = std::make_unique<SerialLine>(settings);
        parts.plugin = Plugin::load(driverFile, Plugin::Instance::PrivateCopy, &parts.error);
        return parts;
    };
}

} // namespace dx4::host
