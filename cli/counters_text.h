// SPDX-License-Identifier: MIT
// The counters of a cycle, as text and as JSON.
#pragma once

#include "host/cycle.h"

#include <QJsonObject>

namespace dx4::cli {

/// "12 reads, 1 writes, 0 retries, 0 given up".
QString countersText(const host::Counters &counters);

/// All of them, under the names of their members.
QJsonObject countersJson(const host::Counters &counters);

} // namespace dx4::cli
