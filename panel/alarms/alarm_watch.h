// SPDX-License-Identifier: MIT
// Finds the alarms in what a line tells, and keeps who took note of them.
#pragma once

#include "host/service/line_service.h"
#include "panel/alarms/alarm_book.h"
#include "panel/model/clock.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>

namespace dx4::panel {

/// What the alarms of a line need.
struct AlarmPort {
    std::function<std::shared_ptr<const host::LineSnapshot>()> snapshot;
    std::function<void(const journal::Event &)> note; ///< keeps an event; null: none are kept
    std::function<QDateTime()> utc;
    QString who; ///< acknowledges here
    QVector<int> stations; ///< of the configuration
};

/// All on the thread of the window.
class AlarmWatch : public QObject {
    Q_OBJECT

public:
    explicit AlarmWatch(AlarmPort port, QObject *parent = nullptr);

    /// Listens to what comes and goes between two looks.
    void follow(const host::LineService &service);

    /// Takes the newest snapshot; to be called some times a second.
    void look();

    const AlarmBook &book() const { return m_book; }

    /// Takes over what the journal tells of the time before.
    void restore(const AlarmBook &before);

    void acknowledge(const QVector<AlarmKey> &keys);

    void noteStation(int station, bool isLost);
    void noteLine(bool isDown, const QString &reason);
    void noteStop(const host::StopReport &report);
    void noteAlarm(const QString &text);

    /// @param reason  why the journal cannot be written; empty: it can
    void noteJournal(const QString &reason);

Q_SIGNALS:
    /// A drive reports a fault that it did not report before.
    void faultCame(int station, int code);

private:
    journal::Time now() const;
    void noteFault(int station, int code);
    void lookAt(const host::LineSnapshot &snapshot);
    void clearUnknown();

    const AlarmPort m_port;
    AlarmBook m_book;
    std::shared_ptr<const host::LineSnapshot> m_seen;
    std::map<int, int> m_faults; // codes by station, as the book has them
};

} // namespace dx4::panel
