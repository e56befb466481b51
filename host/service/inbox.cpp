// SPDX-License-Identifier: MIT
// What other threads want of the line's.
#include "host/service/inbox.h"

#include <algorithm>
#include <utility>

namespace dx4::host {
namespace {

/// The id of a read, a backup or a restore; 0 for other commands.
int jobOf(const Command &command)
{
    if (const auto *read = std::get_if<ReadOnce>(&command))
        return read->id;
    if (const auto *backup = std::get_if<BackUp>(&command))
        return backup->id;
    if (const auto *restore = std::get_if<Restore>(&command))
        return restore->id;
    return 0;
}

bool isNoStop(const Command &command)
{
    return !std::holds_alternative<StopDrives>(command);
}

bool isCancel(const Command &command)
{
    return std::holds_alternative<CancelStop>(command);
}

} // namespace

Inbox::Taken Inbox::put(Command command)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_isClosed)
            return Taken::Closed;
        if (std::holds_alternative<SubmitWrite>(command) && m_openStops > 0)
            return Taken::Stopping;
        if (std::holds_alternative<StopDrives>(command)) {
            ++m_openStops;
            ++m_waitingStops;
        }
        if (const int job = jobOf(command))
            m_jobs.insert(job);
        m_commands.push_back(std::move(command));
    }
    m_bell.ring();
    return Taken::Yes;
}

void Inbox::cancelJob(int id)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_jobs.count(id) > 0)
        m_cancelled.insert(id);
}

void Inbox::close()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isClosed = true;
    }
    m_bell.ring();
}

std::optional<Command> Inbox::take()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_commands.empty())
        return std::nullopt;
    Command command = std::move(m_commands.front());
    m_commands.pop_front();
    if (std::holds_alternative<StopDrives>(command))
        --m_waitingStops;
    return command;
}

bool Inbox::isEmpty() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_commands.empty();
}

bool Inbox::takeCancellation(std::vector<int> *stops)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto last = std::find_if(m_commands.rbegin(), m_commands.rend(), isCancel);
    if (last == m_commands.rend())
        return false;
    const auto taken =
        std::stable_partition(m_commands.begin(), last.base(), [](const Command &command) {
            return isNoStop(command) && !isCancel(command);
        });
    for (auto command = taken; command != last.base(); ++command) {
        if (const auto *stop = std::get_if<StopDrives>(&*command)) {
            stops->push_back(stop->id);
            --m_waitingStops;
        }
    }
    m_commands.erase(taken, last.base());
    return true;
}

Duration Inbox::takeStops(std::vector<int> *stops)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto end = std::find_if(m_commands.begin(), m_commands.end(), isCancel);
    const auto taken = std::stable_partition(m_commands.begin(), end, isNoStop);
    Duration longest { 0 };
    for (auto command = taken; command != end; ++command) {
        const auto &stop = std::get<StopDrives>(*command);
        stops->push_back(stop.id);
        longest = std::max(longest, stop.budget);
        --m_waitingStops;
    }
    m_commands.erase(taken, end);
    return longest;
}

void Inbox::endStops(std::size_t count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_openStops -= count;
}

bool Inbox::isCancelled(int job) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_cancelled.count(job) > 0;
}

void Inbox::forgetJob(int job)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_jobs.erase(job);
    m_cancelled.erase(job);
}

} // namespace dx4::host
