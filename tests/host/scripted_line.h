// SPDX-License-Identifier: MIT
// A line in memory with stations of plain registers behind it, whose replies can be replaced.
#pragma once

#include "host/line/memory_line.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

/// Bytes of a hex text with the right CRC behind them.
QByteArray framed(const std::string &hex);

/// `frame` with its CRC put right.
QByteArray renewedCrc(QByteArray frame);

/// Stations that answer reads (3) and writes (6, 16) at once out of a table of registers.
class ScriptedLine {
public:
    /// Takes the true reply and gives what the master hears instead.
    using Change = std::function<dx4::host::MemoryLine::Answer(const QByteArray &reply)>;

    explicit ScriptedLine(const dx4::host::LineSettings &settings = dx4::host::LineSettings());

    /// The reply that the addressed station gives; writes take effect.
    QByteArray answer(const QByteArray &request);

    dx4::host::MemoryLine line;
    std::map<std::pair<int, int>, int> registers; ///< by station and Modbus register; others are 0
    std::set<std::pair<int, int>> refused; ///< registers that exception 2 answers, by station
    std::set<int> dead; ///< stations that hear and say nothing
    std::map<int, dx4::host::Duration> slow; ///< how long a station takes to answer; others 0
    std::deque<Change> changes; ///< for the next replies, one each
    bool echoes = false; ///< the adapter gives every request back first
};

/// Changes for ScriptedLine::changes.
ScriptedLine::Change silence();
ScriptedLine::Change instead(const QByteArray &bytes);
ScriptedLine::Change late(dx4::host::Duration delay);
