// SPDX-License-Identifier: MIT
// Turns what one line tells into what a journal keeps.
#pragma once

#include "host/service/line_service.h"
#include "journal/fault_watch.h"
#include "journal/keeper_queue.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <optional>

namespace dx4::journal {

/// Listens to one service, on the thread that it lives on.
class ServiceEar : public QObject {
public:
    /// @param queue     outlives this
    /// @param noted     called when something was put there
    /// @param restate   how often registers that stay as they are are stated, in milliseconds
    ServiceEar(host::LineService &service, const QString &line, KeeperQueue &queue,
               std::function<void()> noted, int restate);

    void setWords(const Words &words) { m_faults.setWords(words); }

    /// Notes registers.
    ///
    /// @param changes  1 for values that changed, 0 for those that are as before
    void noteValues(const QVector<host::RegisterValue> &values, int changes);

    /// Notes a write, with the registers of a drive's memory that it reached.
    void noteWrite(const host::WriteOutcome &outcome);

private:
    void listen(const host::LineService &service);
    void listenToJobs(const host::LineService &service);
    void restate();
    void noteParameter(const host::WriteOutcome &outcome, int index);
    void note(EventKind kind, const QString &text, int station = 0, std::optional<int> code = {});
    void put(Event event);

    const QPointer<host::LineService> m_service;
    const QString m_line;
    KeeperQueue &m_queue;
    const std::function<void()> m_noted;
    FaultWatch m_faults;
    QTimer m_restate;
};

} // namespace dx4::journal
