// SPDX-License-Identifier: MIT
// What the line's thread has for the receiver's.
#pragma once

#include "host/service/line_snapshot.h"
#include "host/service/service_events.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <vector>

namespace dx4::host {

/// One of both, or nothing.
struct Delivery {
    QVector<RegisterValue> changes;
    std::optional<ServiceEvent> event;
};

/// Holds what the receiver has not taken: the newest value of each register that changed, all
/// events in their order, and the newest snapshot. Any thread may make any call; none waits for
/// more than a few moves in memory.
class Outbox {
public:
    /// @param notify  called when there is something to take and the receiver was not told since it
    ///                last took; on the thread that put it in
    explicit Outbox(std::function<void()> notify);

    /// Shows a snapshot, with what led to it.
    void post(std::shared_ptr<const LineSnapshot> snapshot, const QVector<RegisterValue> &changes,
              std::vector<ServiceEvent> events);

    void post(std::vector<ServiceEvent> events);

    std::shared_ptr<const LineSnapshot> snapshot() const;

    /// Takes what is to be delivered next: all changes, ascending by station, type and address, or
    /// the earliest event. The receiver is told again before this returns where something is left,
    /// so that whatever it does with this delivery keeps nothing else from it.
    Delivery take();

    /// Takes the earliest event and tells nobody of the rest.
    std::optional<ServiceEvent> takeEvent();

private:
    using Key = std::tuple<int, QString, int>;

    QVector<RegisterValue> takeChanges();
    std::optional<ServiceEvent> takeFirst();
    void notifyOnce(std::unique_lock<std::mutex> &lock); // and gives the lock back

    const std::function<void()> m_notify;
    mutable std::mutex m_mutex;
    std::shared_ptr<const LineSnapshot> m_snapshot;
    std::map<Key, RegisterValue> m_changes;
    std::deque<ServiceEvent> m_events;
    bool m_isNotified = false;
    bool m_tookChanges = false; ///< the last time: an event is next
};

} // namespace dx4::host
