// SPDX-License-Identifier: MIT
// Keeps what lines tell in a journal, on a thread of its own.
#include "journal/journal_keeper.h"

#include "journal/keeper_worker.h"
#include "journal/service_ear.h"

namespace dx4::journal {

JournalKeeper::JournalKeeper(const QString &path, const KeeperSettings &settings, QObject *parent)
    : QObject(parent)
    , m_worker(std::make_unique<KeeperWorker>(path, settings,
                                              [this](const QString &trouble) {
                                                  const auto tell = [this, trouble] {
                                                      if (trouble.isEmpty())
                                                          Q_EMIT recovered();
                                                      else
                                                          Q_EMIT troubled(trouble);
                                                  };
                                                  QMetaObject::invokeMethod(this, tell,
                                                                            Qt::QueuedConnection);
                                              }))
    , m_restate(settings.restate)
{
}

JournalKeeper::~JournalKeeper() = default;

void JournalKeeper::watch(host::LineService &service, const QString &line, const Words &words)
{
    auto &ear = m_ears[line];
    ear = std::make_unique<ServiceEar>(
        service, line, m_worker->queue(), [this] { m_worker->noted(); }, m_restate);
    ear->setWords(words);
}

void JournalKeeper::setWords(const QString &line, const Words &words)
{
    const auto ear = m_ears.find(line);
    if (ear != m_ears.end())
        ear->second->setWords(words);
}

void JournalKeeper::note(const Event &event)
{
    m_worker->queue().put(event);
    m_worker->noted();
}

KeeperState JournalKeeper::state() const
{
    return m_worker->state();
}

bool JournalKeeper::flush()
{
    return m_worker->flush();
}

} // namespace dx4::journal
