// SPDX-License-Identifier: MIT
// The counters of a cycle, as text and as JSON.
#pragma once

#include "host/counters.h"

#include <QJsonObject>

namespace dx4::cli {

/// "12 reads, 1 writes, 0 retries, 0 given up".
QString countersText(const host::CounterSet &counters);

/// Their sums over all blocks.
QJsonObject countersJson(const host::CounterSet &counters);

} // namespace dx4::cli
