// SPDX-License-Identifier: MIT
// Keeps what lines tell in a journal, on a thread of its own.
#pragma once

#include "host/service/line_service.h"
#include "journal/fault_watch.h"
#include "journal/journal.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>

namespace dx4::journal {

class KeeperWorker;
class ServiceEar;

/// How a journal is kept. Spans are in milliseconds.
struct KeeperSettings {
    JournalSettings journal;
    int interval = 1000; ///< between two batches
    int batchSize = 500; ///< events, or samples: so many end the pause
    int mostEvents = 10'000; ///< that wait
    int mostSamples = 100'000; ///< that wait
    int retry = 5000; ///< pause after a batch that could not be written
    int restate = 120'000; ///< how often values that stay as they are are stated
    std::function<Time()> clock; ///< time of day, UTC; null: the system's
};

struct KeeperState {
    QString trouble; ///< why nothing can be written; empty: it can
    int waiting = 0; ///< events and samples that are not written
    qint64 lostEvents = 0; ///< for which there was no room, since the keeper was made
    qint64 lostValues = 0;
};

/// Puts what services tell into a queue that is bounded, and writes it in batches on a thread of
/// its own. No call but flush() and the destructor waits for the disk.
///
/// What cannot be written waits; what does not find room is counted, the oldest goes first, and
/// events never go for the sake of values. Both are told, and noted in the journal when it can be
/// written again, which is tried by itself.
class JournalKeeper : public QObject {
    Q_OBJECT

public:
    /// Opens the file on its thread. The process needs a QCoreApplication.
    explicit JournalKeeper(const QString &path, const KeeperSettings &settings = {},
                           QObject *parent = nullptr);

    /// Writes what waits, as far as that goes at once, and ends the thread.
    ~JournalKeeper() override;

    /// Keeps what a service tells from now on, for as long as both live. Both live on the thread
    /// that calls.
    ///
    /// @param line  what the line is called in the journal, each its own; a service takes the place
    ///              of the one that was watched under the same name
    void watch(host::LineService &service, const QString &line, const Words &words = {});

    /// Gives the words of a configuration that was reloaded.
    void setWords(const QString &line, const Words &words);

    /// Notes something of the program's own; id, start and time are set. From any thread.
    void note(const Event &event);

    KeeperState state() const;

    /// Waits until all that was noted before is written, or was tried in vain once.
    ///
    /// @return whether it is written
    bool flush();

Q_SIGNALS:
    /// Nothing can be written, for a reason that is new.
    void troubled(const QString &reason);
    /// It can be written again.
    void recovered();

private:
    const std::unique_ptr<KeeperWorker> m_worker;
    const int m_restate;
    std::map<QString, std::unique_ptr<ServiceEar>> m_ears; ///< by line
};

} // namespace dx4::journal
