// SPDX-License-Identifier: MIT
// What dx4-sim prints: the device to open, events, answers to commands, the state of the drives.
#pragma once

#include "simulator/cable.h"

#include <ostream>
#include <string>

namespace dx4::sim {

/// Prints either plain text or one JSON object per line; every line is flushed.
class Reporter {
public:
    /// `out` must outlive it. `showEvents` prints events in plain text too, for somebody who
    /// watches; a program that only wants the first line need not read on.
    Reporter(std::ostream &out, bool json, bool showEvents = false)
        : m_out(out)
        , m_json(json)
        , m_showEvents(showEvents)
    {
    }

    /// The first line: "pty /dev/pts/7", or {"event":"pty","path":"/dev/pts/7"}; likewise "port".
    /// JSON has a "link" where there is one.
    void opened(const char *kind, const std::string &path, const std::string &link = {});

    /// One event of the line: always as JSON, as text where events are shown.
    void event(const LineEvent &event);

    /// The answer to a command; `text` may be empty.
    void answer(bool good, const std::string &text);

    /// The state of one station on a line of its own.
    void status(int station, const Inverter &inverter);

private:
    void line(const std::string &text);

    std::ostream &m_out;
    bool m_json;
    bool m_showEvents;
};

/// `text` in quotes as JSON wants it; bytes that are no UTF-8 become the replacement character.
std::string jsonText(const std::string &text);

} // namespace dx4::sim
