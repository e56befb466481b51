// SPDX-License-Identifier: MIT
// What the line's thread has for the receiver's.
#include "host/service/outbox.h"

#include <iterator>
#include <utility>

namespace dx4::host {

Outbox::Outbox(std::function<void()> notify)
    : m_notify(std::move(notify))
    , m_snapshot(std::make_shared<const LineSnapshot>())
{
}

void Outbox::post(std::shared_ptr<const LineSnapshot> snapshot,
                  const QVector<RegisterValue> &changes, std::vector<ServiceEvent> events)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_snapshot.swap(snapshot); // the former one ends with this call, behind the lock
    for (const RegisterValue &value : changes)
        m_changes[{ value.station, value.regType, value.address }] = value;
    std::move(events.begin(), events.end(), std::back_inserter(m_events));
    if (!changes.isEmpty() || !events.empty())
        notifyOnce(lock);
}

void Outbox::post(std::vector<ServiceEvent> events)
{
    if (events.empty())
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    std::move(events.begin(), events.end(), std::back_inserter(m_events));
    notifyOnce(lock);
}

void Outbox::notifyOnce(std::unique_lock<std::mutex> &lock)
{
    if (std::exchange(m_isNotified, true))
        return;
    lock.unlock();
    m_notify();
}

std::shared_ptr<const LineSnapshot> Outbox::snapshot() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_snapshot;
}

Delivery Outbox::take()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isNotified = false;
    m_tookChanges = !m_changes.empty() && (m_events.empty() || !m_tookChanges);
    Delivery delivery;
    if (m_tookChanges)
        delivery.changes = takeChanges();
    else
        delivery.event = takeFirst();
    if (!m_changes.empty() || !m_events.empty())
        notifyOnce(lock);
    return delivery;
}

std::optional<ServiceEvent> Outbox::takeEvent()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return takeFirst();
}

QVector<RegisterValue> Outbox::takeChanges()
{
    QVector<RegisterValue> values;
    for (auto &[key, value] : m_changes)
        values.append(std::move(value));
    m_changes.clear();
    return values;
}

std::optional<ServiceEvent> Outbox::takeFirst()
{
    if (m_events.empty())
        return std::nullopt;
    ServiceEvent event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

} // namespace dx4::host
