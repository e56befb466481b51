// SPDX-License-Identifier: MIT
// Work that waits for a disk, off the thread of the window.
#include "panel/parameters/background.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace dx4::panel {

struct Background::Thread {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> waiting;
    bool isEnding = false;
    std::thread thread;

    /// The next piece; none once it is to end.
    Work next()
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return isEnding || !waiting.empty(); });
        if (isEnding)
            return {};
        Work work = std::move(waiting.front());
        waiting.pop_front();
        return work;
    }

    void work(QObject *window)
    {
        while (const Work work = next())
            QMetaObject::invokeMethod(window, work(), Qt::QueuedConnection);
    }
};

Background::Background(QObject *parent)
    : QObject(parent)
    , m_thread(std::make_unique<Thread>())
{
    m_thread->thread = std::thread([this] { m_thread->work(this); });
}

Background::~Background()
{
    {
        const std::lock_guard<std::mutex> lock(m_thread->mutex);
        m_thread->isEnding = true;
    }
    m_thread->changed.notify_one();
    m_thread->thread.join();
}

void Background::run(Work work)
{
    {
        const std::lock_guard<std::mutex> lock(m_thread->mutex);
        m_thread->waiting.push_back(std::move(work));
    }
    m_thread->changed.notify_one();
}

Runner Background::runner()
{
    return [this](Work work) { run(std::move(work)); };
}

} // namespace dx4::panel
