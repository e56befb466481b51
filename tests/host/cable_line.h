// SPDX-License-Identifier: MIT
// The host's line over the simulator's cable: real inverters, seeded faults, a clock that waits.
#pragma once

#include "host/line/line.h"
#include "simulator/cable.h"

/// Byte times are the cable's own; waiting advances the clock.
class CableLine : public dx4::host::Line {
public:
    /// @param settings  speed and response timeout; both cable and clock outlive the line
    CableLine(dx4::sim::Cable &cable, dx4::sim::VirtualClock &clock,
              const dx4::host::LineSettings &settings);

    bool open(QString *error) override;
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    const dx4::host::LineSettings &settings() const override { return m_settings; }
    dx4::host::Duration now() const override { return m_clock.now(); }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, dx4::host::Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(dx4::host::Duration gap, dx4::host::Duration deadline) override;

private:
    void fetch();

    dx4::sim::Cable &m_cable;
    dx4::sim::VirtualClock &m_clock;
    dx4::host::LineSettings m_settings;
    QByteArray m_input;
    dx4::host::Duration m_lastActivity { 0 };
    bool m_open = true;
};
