// SPDX-License-Identifier: MIT
// Keeps what a line shows, so that the time before a fault can be looked at after it.
#pragma once

#include "host/service/line_service.h"
#include "panel/past/past_record.h"

#include <QObject>

#include <deque>
#include <functional>
#include <map>
#include <tuple>

namespace dx4::panel {

/// Holds the last minute in memory and gives it away once for each fault. All on one thread.
class PastRecorder : public QObject {
    Q_OBJECT

public:
    /// Beyond that the time before a fault is shorter: some megabytes.
    static constexpr int mostChanges = 100'000;
    /// Faults that are followed at the same time; more come with the same cause.
    static constexpr int mostOpen = 8;

    explicit PastRecorder(std::function<QDateTime()> utc, QObject *parent = nullptr);

    void follow(const host::LineService &service);

    void noteValues(const QVector<host::RegisterValue> &values);
    void noteLine(const QString &downReason);

    /// A drive reports a fault: what follows for some seconds belongs to it as well.
    void begin(int station, int code);

    /// Gives what is complete; to be called now and then.
    void look();

    /// Changes that are held.
    int held() const { return static_cast<int>(m_changes.size()); }

Q_SIGNALS:
    /// Names, words, frames and parameters are the receiver's to add.
    void completed(const dx4::panel::PastRecord &record);

private:
    struct Fault {
        int station = 0;
        int code = 0;
        journal::Time at = 0;
    };

    journal::Time now() const;
    int placeOf(const host::RegisterValue &value);
    void forgetOld();
    void forgetFirst();
    PastRecord recordOf(const Fault &fault) const;

    const std::function<QDateTime()> m_utc;
    std::map<std::tuple<int, QString, int>, int> m_places;
    QVector<PastRegister> m_registers;
    QVector<PastChange> m_base; // what was known before the first change that is held, by place
    std::deque<PastChange> m_changes;
    std::deque<PastLine> m_lines; // the first may be older than the changes
    QVector<Fault> m_open;
    journal::Time m_from = 0; // what is known reaches from here
};

} // namespace dx4::panel
