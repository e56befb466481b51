// SPDX-License-Identifier: MIT
// What runs on a keeper's thread.
#pragma once

#include "host/service/doorbell.h"
#include "journal/journal_keeper.h"
#include "journal/keeper_queue.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace dx4::journal {

/// Opens the journal, writes what the queue has and tries again what could not be written.
class KeeperWorker {
public:
    /// Told on the worker's thread; an empty text: it can be written again.
    using Teller = std::function<void(const QString &trouble)>;

    KeeperWorker(QString path, const KeeperSettings &settings, Teller tell);
    ~KeeperWorker();
    KeeperWorker(const KeeperWorker &) = delete;
    KeeperWorker &operator=(const KeeperWorker &) = delete;

    KeeperQueue &queue() { return m_queue; }

    /// Something was put into the queue.
    void noted();
    KeeperState state() const;
    bool flush();

private:
    void run();
    int flushesAsked() const;
    void answerFlush(int asked, bool isWritten);
    bool writeAll(bool isLast);
    bool writeEvents();
    bool writeSamples(bool isLast);
    bool isReady();
    bool write(Batch &batch);
    bool noteLosses();
    void note(const QString &text);
    void setTrouble(const QString &text);

    const QString m_path;
    const KeeperSettings m_settings;
    const Teller m_tell;
    KeeperQueue m_queue;
    std::unique_ptr<Journal> m_journal;
    Batch m_events; ///< taken from the queue and not written
    Batch m_samples;
    QString m_lastTrouble; ///< since losses were noted
    host::Doorbell m_bell;
    std::atomic<bool> m_isRung { false };
    std::atomic<bool> m_isClosing { false };
    mutable std::mutex m_mutex; ///< of what follows
    std::condition_variable m_flushed;
    QString m_trouble;
    int m_flushAsked = 0;
    int m_flushDone = 0; ///< changed on the worker's thread alone
    bool m_isFlushed = false; ///< the last one wrote all
    std::thread m_thread; ///< last: it uses all of the above
};

} // namespace dx4::journal
