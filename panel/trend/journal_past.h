// SPDX-License-Identifier: MIT
// What a journal kept before the recording began.
#pragma once

#include "panel/trend/register_history.h"
#include "panel/trend/trace_key.h"

#include <QObject>
#include <QThread>
#include <QVector>

#include <atomic>

namespace dx4::journal {
class JournalReader;
}

namespace dx4::panel {

class TrendStore;

/// Reads it on a thread of its own; what it reads arrives as signals on the thread that it lives
/// on.
class JournalPast : public QObject {
    Q_OBJECT

public:
    /// @param path  of the journal; a file that is not there is no history
    /// @param line  what the line is called in it
    JournalPast(const QString &path, const QString &line, QObject *parent = nullptr);

    /// Gives up what is not read yet.
    ~JournalPast() override;

    /// Reads what was before a moment of these registers, and the writes and faults of the line.
    void ask(const QVector<TraceInfo> &registers, Moment until);

Q_SIGNALS:
    void rowsRead(const dx4::panel::TraceKey &key, int level, dx4::panel::Moment rowWidth,
                  const QVector<dx4::panel::PastRow> &rows);
    void markersRead(const QVector<dx4::panel::Marker> &markers);
    /// All that was asked for is read, or cannot be.
    ///
    /// @param trouble  why not; empty: all is well
    void ended(const QString &trouble);

private:
    void read(const QVector<TraceInfo> &registers, Moment until);
    void readRegister(journal::JournalReader &reader, const TraceInfo &info, Moment until);
    void readMarkers(journal::JournalReader &reader, Moment until);

    const QString m_path;
    const QString m_line;
    std::atomic<bool> m_isEnding { false };
    QThread m_thread;
    QObject m_place; // lives on that thread
};

/// Has each register that is recorded get what the journal kept of it. Both live on one thread.
void remember(TrendStore &store, JournalPast &past);

} // namespace dx4::panel
