// SPDX-License-Identifier: MIT
// Ticked values on their way to a drive.
#pragma once

#include "panel/model/panel_line.h"
#include "panel/parameters/parameter_book.h"

#include <QStringList>

namespace dx4::panel {

/// What is known of a motor.
enum class Standing { Stands, Runs, Unknown };

/// What the line knows of the motor of a station.
Standing standingOf(const PanelLine &line, int station);

/// What would be written, from where, to where.
struct RestorePlan {
    QString source; ///< name of the file or drive
    int sourceStation = 0;
    QString drive;
    int station = 0;
    host::ParameterSet set;
    QStringList changes; ///< "F 8.2 acceleration time: 0.2 s to 12.0 s", one per register

    /// Whether the values are those of another station.
    bool isOfOther() const { return sourceStation != station; }
};

/// Asks whether values may be written, writes them and tells what came of it. Nothing is written
/// unless begin() is called.
class ParameterRestore : public QObject {
    Q_OBJECT

public:
    using Standings = std::function<Standing(int station)>;

    ParameterRestore(ParameterBook &book, Standings standing, QObject *parent = nullptr);

    void follow(const host::LineService &service);

    /// What the ticks of the book come to.
    RestorePlan plan() const;

    /// Why it may not be written now, in words; empty: it may.
    QString refusal(const RestorePlan &plan) const;

    /// Writes, unless something speaks against it.
    ///
    /// @param isAgreed  the user agreed that the values are those of another station
    bool begin(const RestorePlan &plan, bool isAgreed);

    /// Ends it before its next request.
    void cancel();

    /// Looks at the motor: once it runs, a restore ends.
    void look();

    bool isRunning() const { return m_id != 0; }
    bool hasEnded() const { return !isRunning() && !m_report.isEmpty(); }
    int done() const { return m_done; }
    int total() const { return m_total; }

    /// "20 of 45 registers read": it reads before and behind its writes.
    QString progressText() const;

    /// What it came to, a line each; empty before the first one has ended.
    const QStringList &report() const { return m_report; }
    bool isRestored() const { return m_isRestored; }

    /// Forgets the report.
    void clear();

    void noteProgress(int id, int done, int total);
    void noteRestored(int id, const dx4::host::RestoreReport &report);

Q_SIGNALS:
    void changed();

private:
    ParameterBook &m_book;
    const Standings m_standing;
    RestorePlan m_plan; // of the restore under way
    int m_id = 0; // 0: none
    int m_done = 0;
    int m_total = 0;
    QString m_endedBecause;
    QStringList m_report;
    bool m_isRestored = false;
};

} // namespace dx4::panel
