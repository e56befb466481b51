// SPDX-License-Identifier: MIT
// The simulator's cable as a line of the host: in memory, on a clock that moves only when somebody
// waits.
#pragma once

#include "host/line/line.h"
#include "simulator/cable.h"

namespace dx4::faults {

/// Puts the host on one end of a cable. Always open: a plug pulled on the far side looks like
/// silence from here.
class FarPlugLine : public host::Line {
public:
    /// Both must outlive the line; `settings` should give the cable's own character time.
    FarPlugLine(sim::Cable &cable, sim::VirtualClock &clock, const host::LineSettings &settings);

    bool open(QString *) override { return true; }
    void close() override { }
    bool isOpen() const override { return true; }
    const host::LineSettings &settings() const override { return m_settings; }
    host::Duration now() const override { return m_clock.now(); }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, host::Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(host::Duration gap, host::Duration deadline) override;

private:
    void takeArrived();

    sim::Cable &m_cable;
    sim::VirtualClock &m_clock;
    host::LineSettings m_settings;
    QByteArray m_input; ///< arrived, not received
    host::Duration m_lastActivity;
};

} // namespace dx4::faults
