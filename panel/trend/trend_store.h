// SPDX-License-Identifier: MIT
// All that is recorded of one line.
#pragma once

#include "host/service/line_service.h"
#include "panel/model/clock.h"
#include "panel/trend/register_history.h"
#include "panel/trend/trace_key.h"
#include "panel/trend/trigger.h"

#include <QObject>

#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace dx4::panel {

/// Records every register that has a name, and the status and fault words, from what changes. What
/// is looked at has no effect on it. All on the thread of the window.
class TrendStore : public QObject {
    Q_OBJECT

public:
    using SnapshotSource = std::function<std::shared_ptr<const host::LineSnapshot>()>;

    static constexpr int mostMarkers = 2'000;

    TrendStore(const host::Config &config, SnapshotSource snapshot, Clock clock,
               QObject *parent = nullptr);

    /// Listens to what changes and to the ends of writes.
    void follow(const host::LineService &service);

    /// The present, see Moment.
    Moment now() const;

    /// When the recording began.
    Moment began() const { return m_began; }

    /// What the time of day is ahead of the moments, to a tenth of a second: it may have been set
    /// since.
    Moment clockShift() const;

    /// All that is recorded, ascending.
    QVector<TraceInfo> registers() const;
    const TraceInfo *find(const TraceKey &key) const;

    /// What the bits of the status word are called, by bit.
    const QMap<int, QString> &states() const { return m_config.states; }

    /// "output frequency", or the word of a bit.
    QString nameOf(const TraceChoice &choice) const;

    /// Takes the newest snapshot: what is too old there is lost here. To be called before a read.
    void look();

    /// The level that shows all of these registers in a window.
    ///
    /// @param most  columns of each
    std::size_t levelFor(const QVector<TraceChoice> &choices, Moment from, Moment to, int most);

    /// Columns of one register.
    void read(const TraceKey &key, std::size_t level, Moment from, Moment to, ColumnRun *run);

    /// The newest value, while it is known.
    std::optional<quint16> valueOf(const TraceKey &key) const;

    QVector<Marker> markers(Moment from, Moment to) const;

    /// Waits for a level or a fault; fired() tells.
    void arm(const TriggerRule &rule);
    void disarm() { m_trigger.disarm(); }
    bool isArmed() const { return m_trigger.isArmed(); }

    /// Takes what was kept before the recording began.
    void addPast(const TraceKey &key, std::size_t level, Moment rowWidth,
                 const QVector<PastRow> &rows);
    /// Once: what is given again is left out.
    void addPastMarkers(const QVector<dx4::panel::Marker> &markers);

    void noteValues(const QVector<dx4::host::RegisterValue> &values);
    void noteWriteEnded(const dx4::host::WriteOutcome &outcome);

    /// Of the columns of all registers.
    std::size_t bytes() const;

Q_SIGNALS:
    /// Registers are recorded that were not before.
    void learned(const QVector<dx4::panel::TraceKey> &keys);
    /// What one waited for came; the trigger is not armed any more.
    void fired(dx4::panel::Moment at, const QString &what);

private:
    struct Record {
        TraceInfo info;
        RegisterHistory history;
        quint16 faultCode = 0; // newest that was seen
    };

    Record *recordOf(const host::RegisterValue &value, QVector<TraceKey> *added);
    void note(Record &record, const host::RegisterValue &value, host::Duration since);
    void noteChange(Record &record, Moment at, quint16 value);
    void noteFault(Record &record, Moment at, quint16 code);
    void fire(Moment at, int station, const QString &what);
    void addMarker(const Marker &marker);
    host::Duration sinceSnapshot() const;
    QString driveOf(int station) const;

    const host::Config m_config;
    const SnapshotSource m_source;
    const Clock m_clock;
    const Moment m_began;
    const host::Duration m_beganAt; // of the steady clock
    std::shared_ptr<const host::LineSnapshot> m_snapshot;
    host::Duration m_seenAt { 0 };
    std::map<TraceKey, Record> m_records;
    std::deque<Marker> m_markers;
    Trigger m_trigger;
    bool m_hasPastMarkers = false;
};

} // namespace dx4::panel
