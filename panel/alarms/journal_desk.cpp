// SPDX-License-Identifier: MIT
// Reads the journal and writes files on a thread of its own.
#include "panel/alarms/journal_desk.h"

#include <utility>

namespace dx4::panel {
namespace {

constexpr int patience = 1000; // ms for another program's lock

} // namespace

JournalDesk::JournalDesk(const QString &path, QObject *parent)
    : QObject(parent)
    , m_path(path)
    , m_thread([this] { run(); })
{
}

JournalDesk::~JournalDesk()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isClosing = true;
    }
    m_asked.notify_one();
    m_thread.join();
}

void JournalDesk::ask(Work work)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_works.push_back(std::move(work));
    }
    m_asked.notify_one();
}

/// The file is opened anew for each work: it may come later than the desk, and be moved away.
void JournalDesk::run()
{
    for (;;) {
        Work work;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_asked.wait(lock, [this] { return m_isClosing || !m_works.empty(); });
            if (m_works.empty())
                return;
            work = std::move(m_works.front());
            m_works.pop_front();
        }
        journal::Trouble trouble;
        const auto reader =
            hasJournal() ? journal::JournalReader::open(m_path, &trouble, patience) : nullptr;
        const Answer answer =
            work(reader.get(), hasJournal() ? trouble.text : tr("No journal is kept."));
        QMetaObject::invokeMethod(this, answer, Qt::QueuedConnection);
    }
}

} // namespace dx4::panel
