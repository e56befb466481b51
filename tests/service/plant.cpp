// SPDX-License-Identifier: MIT
// Stations on a line in memory, whose requests a test can hold up.
#include "plant.h"

#include <utility>

using dx4::host::Doorbell;
using dx4::host::Duration;
using dx4::host::LineSettings;

Plant::Plant(const LineSettings &settings)
    : stations(settings)
    , m_gate(std::make_unique<Doorbell>())
{
}

void Plant::setWaits(dx4::host::Waits &waits)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_gate = std::make_unique<Doorbell>(waits);
}

void Plant::await(std::unique_lock<std::mutex> &lock, const std::function<bool()> &isSo)
{
    if (!turn)
        return m_changed.wait(lock, isSo);
    while (!isSo()) {
        lock.unlock();
        turn();
        lock.lock();
    }
}

void Plant::hold()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isHolding = true;
}

void Plant::awaitHeld()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    await(lock, [this] { return m_held > 0 && m_allowed == 0; });
}

void Plant::letGo(int count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_allowed += count;
    m_gate->ring();
}

void Plant::release()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isHolding = false;
    m_gate->ring();
}

void Plant::awaitSent(const QByteArray &request)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        await(lock, [this] { return !m_sent.empty(); });
        const QByteArray sent = m_sent.front();
        m_sent.pop_front();
        if (sent == request)
            return;
    }
}

void Plant::pass(const QByteArray &request)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_sent.push_back(request);
    m_changed.notify_all();
    if (!m_isHolding)
        return;
    ++m_held;
    m_changed.notify_all();
    while (m_isHolding && m_allowed == 0) {
        lock.unlock();
        m_gate->wait(std::chrono::hours(1));
        lock.lock();
    }
    if (m_isHolding)
        --m_allowed;
    --m_held;
}

PlantLine::PlantLine(std::shared_ptr<Plant> plant)
    : m_plant(std::move(plant))
{
}

bool PlantLine::open(QString *error)
{
    if (!m_plant->isRefusedToOpen)
        return line().open(error);
    if (error)
        *error = QStringLiteral("no such port");
    return false;
}

void PlantLine::close()
{
    line().close();
}

bool PlantLine::isOpen() const
{
    return line().isOpen();
}

const LineSettings &PlantLine::settings() const
{
    return line().settings();
}

Duration PlantLine::now() const
{
    return line().now();
}

bool PlantLine::send(const QByteArray &bytes)
{
    m_plant->pass(bytes);
    if (m_plant->failure)
        m_plant->failure();
    m_plant->sendTimes.push_back(now());
    return line().send(bytes);
}

QByteArray PlantLine::receive(int count, Duration deadline)
{
    return line().receive(count, deadline);
}

int PlantLine::discardInput()
{
    return line().discardInput();
}

bool PlantLine::awaitSilence(Duration gap, Duration deadline)
{
    return line().awaitSilence(gap, deadline);
}
