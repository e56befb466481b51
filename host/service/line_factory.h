// SPDX-License-Identifier: MIT
// How a service gets its line and its driver.
#pragma once

#include "host/line/line.h"
#include "host/line/line_settings.h"
#include "host/link/plugin.h"

#include <QString>

#include <functional>
#include <memory>

namespace dx4::host {

/// What one line is run with.
struct LineParts {
    std::unique_ptr<Line> line;
    std::unique_ptr<Plugin> plugin; ///< a private copy where the process has another line
    QString error; ///< why one of them is null
};

/// Makes the parts on the thread on which they are used and destroyed. Called once.
using LineFactory = std::function<LineParts()>;

/// A serial line with a private copy of the driver.
LineFactory serialLine(const LineSettings &settings, const QString &driverFile);

} // namespace dx4::host
