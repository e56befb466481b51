// SPDX-License-Identifier: MIT
// What runs on a keeper's thread.
#include "journal/keeper_worker.h"

#include <QDateTime>

#include <chrono>
#include <utility>

namespace dx4::journal {
namespace {

QString timeText(Time time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODate);
}

KeeperQueue::Clock clockOf(const KeeperSettings &settings)
{
    return settings.clock ? settings.clock : [] { return QDateTime::currentMSecsSinceEpoch(); };
}

} // namespace

KeeperWorker::KeeperWorker(QString path, const KeeperSettings &settings, Teller tell)
    : m_path(std::move(path))
    , m_settings(settings)
    , m_tell(std::move(tell))
    , m_queue(clockOf(settings), settings.mostEvents, settings.mostSamples)
    , m_thread([this] { run(); })
{
}

KeeperWorker::~KeeperWorker()
{
    m_isClosing = true;
    m_bell.ring();
    m_thread.join();
}

void KeeperWorker::noted()
{
    if (m_queue.waiting() >= m_settings.batchSize && !m_isRung.exchange(true))
        m_bell.ring();
}

KeeperState KeeperWorker::state() const
{
    const Losses lost = m_queue.lostSoFar();
    const std::lock_guard<std::mutex> lock(m_mutex);
    return { m_trouble, m_queue.waiting(), lost.events, lost.values };
}

bool KeeperWorker::flush()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const int asked = ++m_flushAsked;
    m_bell.ring();
    m_flushed.wait(lock, [&] { return m_flushDone >= asked; });
    return m_isFlushed;
}

void KeeperWorker::run()
{
    bool isWritten = writeAll(false);
    while (!m_isClosing) {
        m_bell.wait(std::chrono::milliseconds(isWritten ? m_settings.interval : m_settings.retry));
        const int asked = flushesAsked();
        isWritten = writeAll(asked != m_flushDone);
        m_isRung =
            !isWritten; // what comes meanwhile does not shorten the pause before the next try
        answerFlush(asked, isWritten);
    }
    if (writeAll(true))
        m_journal->end();
    m_journal.reset();
}

int KeeperWorker::flushesAsked() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_flushAsked;
}

void KeeperWorker::answerFlush(int asked, bool isWritten)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_flushDone = asked;
    m_isFlushed = isWritten;
    m_flushed.notify_all();
}

/// Events go in batches of their own, and first: where the disk takes little more it takes those.
bool KeeperWorker::writeAll(bool isLast)
{
    if (!isReady() || !writeEvents() || !writeSamples(isLast))
        return false;
    setTrouble(QString());
    return true;
}

bool KeeperWorker::writeEvents()
{
    for (;;) {
        if (m_events.isEmpty())
            m_events = m_queue.takeEvents(m_settings.batchSize);
        if (m_events.isEmpty() && !noteLosses())
            return true;
        if (!write(m_events))
            return false;
    }
}

bool KeeperWorker::writeSamples(bool isLast)
{
    for (;;) {
        if (m_samples.isEmpty())
            m_samples = m_queue.takeSamples(m_settings.batchSize, isLast);
        if (m_samples.isEmpty())
            return true;
        if (!write(m_samples))
            return false;
    }
}

/// Opens the file; also one that takes the place of a file that was moved away or is damaged.
bool KeeperWorker::isReady()
{
    if (m_journal && m_journal->isInPlace())
        return true;
    m_journal.reset();
    Trouble trouble;
    QString setAsideAs;
    m_journal = Journal::open(m_path, m_settings.journal, &trouble, &setAsideAs);
    if (!setAsideAs.isEmpty())
        note(QStringLiteral("the journal was damaged; it is kept as %1").arg(setAsideAs));
    if (!m_journal)
        setTrouble(trouble.text);
    return m_journal != nullptr;
}

bool KeeperWorker::write(Batch &batch)
{
    Trouble trouble;
    bool isWritten = m_journal->write(batch, &trouble);
    if (!isWritten && trouble.kind == Trouble::Kind::Damaged) {
        m_journal.reset();
        isWritten = isReady() && m_journal->write(batch, &trouble);
    }
    if (isWritten)
        batch = {};
    else if (m_journal)
        setTrouble(trouble.text);
    return isWritten;
}

/// @return whether there is something to be written now
bool KeeperWorker::noteLosses()
{
    const Losses losses = m_queue.takeLosses();
    if (losses.events == 0 && losses.values == 0)
        return false;
    const QString trouble = m_lastTrouble.isEmpty()
        ? QStringLiteral("they came faster than they could be written")
        : m_lastTrouble;
    note(QStringLiteral("%1 events and %2 values could not be kept, the first of %3: %4")
             .arg(losses.events)
             .arg(losses.values)
             .arg(timeText(losses.first), trouble));
    m_lastTrouble.clear();
    return true;
}

void KeeperWorker::note(const QString &text)
{
    Event event;
    event.kind = EventKind::Journal;
    event.text = text;
    m_queue.put(event);
}

void KeeperWorker::setTrouble(const QString &text)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (std::exchange(m_trouble, text) == text)
            return;
    }
    if (!text.isEmpty())
        m_lastTrouble = text;
    m_tell(text);
}

} // namespace dx4::journal
