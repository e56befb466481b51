// SPDX-License-Identifier: MIT
// Late stations on a line in virtual time.
#pragma once

#include "plant.h"

class LatePlant : public dx4::host::Line, public Plant {
public:
    LatePlant(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance);

    /// The longest that a station takes; the response timeout for one that is not there.
    dx4::host::Duration slowestOf(int station) const { return m_stations.slowestOf(station); }
    bool echoes() const { return m_stations.echoes(); }

    dx4::host::Line &line() override { return *this; }
    void addStation(int number, const LateHabit &habit) override { m_stations.add(number, habit); }
    void toggle(int station) override;
    int ordinalOf(int station, int registerAddress) const override
    {
        return m_stations.ordinalOf(station, registerAddress);
    }
    std::vector<CarriedOut> carriedOut(int station) const override
    {
        return m_stations.carriedOut(station);
    }

    bool open(QString *error) override;
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    const dx4::host::LineSettings &settings() const override { return m_settings; }
    dx4::host::Duration now() const override { return m_now; }
    bool send(const QByteArray &bytes) override;
    QByteArray receive(int count, dx4::host::Duration deadline) override;
    int discardInput() override;
    bool awaitSilence(dx4::host::Duration gap, dx4::host::Duration deadline) override;

private:
    dx4::host::LineSettings m_settings;
    LateStations m_stations;
    dx4::host::Duration m_now { 0 };
    bool m_open = true;
};
