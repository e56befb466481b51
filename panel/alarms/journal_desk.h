// SPDX-License-Identifier: MIT
// Reads the journal and writes files on a thread of its own.
#pragma once

#include "journal/journal_reader.h"

#include <QObject>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace dx4::panel {

/// Whoever makes it asks, and gets the answers on its own thread, by its event loop. No call waits
/// for the disk but the destructor: what was asked for is done then, and nothing answered any more.
class JournalDesk : public QObject {
    Q_OBJECT

public:
    /// What is done on the thread of the window with what was found.
    using Answer = std::function<void()>;

    /// What is done on the desk's thread.
    ///
    /// @param reader   null where the journal cannot be read
    /// @param trouble  why not
    using Work = std::function<Answer(journal::JournalReader *reader, const QString &trouble)>;

    /// @param path  of the journal; empty: none is kept
    explicit JournalDesk(const QString &path, QObject *parent = nullptr);
    ~JournalDesk() override;

    bool hasJournal() const { return !m_path.isEmpty(); }

    /// Has this done when what was asked for before is done.
    void ask(Work work);

private:
    void run();

    const QString m_path;
    std::mutex m_mutex; // of what follows
    std::condition_variable m_asked;
    std::deque<Work> m_works;
    bool m_isClosing = false;
    std::thread m_thread; // last: it uses all of the above
};

} // namespace dx4::panel
