// SPDX-License-Identifier: MIT
// A panel with alarms and a history that a test makes up.
#pragma once

#include "panel/alarms/alarm_banner.h"
#include "panel/alarms/alarms_page.h"
#include "panel_fixture.h"

#include <functional>
#include <vector>

/// 2026-03-01, 12:00:00 UTC, when the clock of a MadeUpLine begins.
constexpr dx4::journal::Time panelNoon = 1'772'366'400'000;

/// An event of the history.
dx4::journal::Event historyEvent(qint64 id, dx4::journal::EventKind kind, int station,
                                 const char *text, dx4::journal::Time time);

/// A window with banner and alarms page. Answers of the journal come when the test gives them.
struct AlarmPanel {
    explicit AlarmPanel(QSize size = { 800, 480 }, bool hasJournal = true);

    /// Publishes what was read and draws it.
    void show();

    /// Alarms in each of their states.
    void raiseSome();

    /// The history is read, with so many events.
    void giveHistory(int count);

    /// Opens the alarms page.
    void openAlarms();

    MadeUpPanel panel;
    dx4::panel::AlarmWords words;
    std::vector<dx4::journal::Event> noted;
    dx4::panel::AlarmWatch watch;
    std::vector<dx4::journal::EventQuery> asked; ///< of the history
    std::function<void(const dx4::panel::EventsRead &)> answer; ///< of the last one
    std::vector<QString> savedAs;
    bool mayReplace = false; ///< as the last save said
    std::function<void(const dx4::panel::SaveEnd &)> saved; ///< answer to the last save
    dx4::panel::AlarmsPage *page;
    dx4::panel::AlarmBanner *banner;

private:
    dx4::panel::AlarmsPort port(bool hasJournal);
};
