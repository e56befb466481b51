// SPDX-License-Identifier: MIT
// The host's counters, as text and as JSON.
#pragma once

#include "cli/console/facts.h"
#include "host/exchange/counters.h"

namespace dx4::cli {

/// "12 reads, 1 write, 0 retries, 0 given up".
QString countersText(const host::CounterSet &counters);

/// Their sums over all blocks.
Facts sumFacts(const host::CounterSet &counters);

/// The same, and how requests failed.
Facts countersFacts(const host::CounterSet &counters);

/// What went wrong and how often, "2 silence", "1 exception 6"; "none" where nothing did.
QStringList failureTexts(const host::RequestCounts &counts);

/// How long stations took to answer, "12 within 1 ms"; "none" where nothing was answered.
QStringList answerTexts(const host::RequestCounts &counts);

} // namespace dx4::cli
