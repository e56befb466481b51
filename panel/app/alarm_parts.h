// SPDX-License-Identifier: MIT
// Alarms and journal of the panel, put together.
#pragma once

#include "journal/journal_keeper.h"
#include "panel/alarms/alarm_watch.h"
#include "panel/alarms/alarm_words.h"
#include "panel/alarms/journal_desk.h"
#include "panel/app/journal_place.h"
#include "panel/app/plant.h"
#include "panel/model/clock.h"
#include "panel/past/past_keeper.h"
#include "panel/past/past_recorder.h"

#include <QTimer>

#include <memory>

namespace dx4::panel {

class PanelWindow;

/// Keeps what the line tells, and shows it in banner and page of the alarms.
class AlarmParts {
public:
    /// @param plant  outlives this
    AlarmParts(const Plant &plant, const Options &options, const Clock &clock);
    ~AlarmParts();

    /// Gives a window its banner and its page; the window goes first, or does nothing any more when
    /// this goes.
    void addTo(PanelWindow &window);

    const JournalPlace &place() const { return m_place; }

    /// What the line is called in the journal.
    const QString &line() const { return m_line; }

private:
    void keep(const Plant &plant, const QString &line);
    void recordFaults(const Plant &plant, const QString &line, journal::Time began);

    const Clock m_clock;
    const JournalPlace m_place;
    const QString m_line;
    const AlarmWords m_words;
    QVector<int> m_stations;
    std::unique_ptr<journal::JournalKeeper> m_keeper; ///< null: no journal is kept
    std::unique_ptr<AlarmWatch> m_watch;
    std::unique_ptr<PastRecorder> m_recorder; ///< null as well
    QTimer m_recorderTimer;
    std::unique_ptr<JournalDesk> m_desk; ///< goes first: its answers are for those above
    std::unique_ptr<PastKeeper> m_pastKeeper; ///< null as well
};

/// Who acknowledges at this panel: the user of the system.
QString userName();

} // namespace dx4::panel
