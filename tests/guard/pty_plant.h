// SPDX-License-Identifier: MIT
// Late stations behind a pseudo-terminal, in real time.
#pragma once

#include "../host/pseudo_terminal.h"
#include "host/line/serial_line.h"
#include "plant.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>

/// A thread plays the stations at the far end; the host has a serial line at the near end. A thread
/// that the machine does not let run makes the stations later than they are meant to be.
class PtyPlant : public Plant {
public:
    /// Opens the line, to be used on this thread.
    ///
    /// @param chance  of the stations' thread, nobody else's
    PtyPlant(const dx4::host::LineSettings &settings, const LineHabit &line, Chance &chance);
    ~PtyPlant() override;

    dx4::host::Line &line() override { return m_line; }
    void addStation(int number, const LateHabit &habit) override;
    void toggle(int station) override;
    int ordinalOf(int station, int registerAddress) const override;
    std::vector<CarriedOut> carriedOut(int station) const override;
    std::string history() const override;

private:
    void play();
    dx4::host::Duration answer();
    void listen();
    void note(const char *what, const QByteArray &bytes);

    PseudoTerminal m_terminal;
    dx4::host::SerialLine m_line;
    mutable std::mutex m_mutex; // of all below
    LateStations m_stations;
    QByteArray m_heard; // the beginning of a request
    std::deque<std::string> m_history;
    int m_end[2] = { -1, -1 }; // a pipe; the thread ends when its writing end is closed
    int m_spare = -1; // the near end, so that the terminal outlives the line's being closed
    std::thread m_thread;
};
