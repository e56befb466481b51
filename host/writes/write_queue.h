// SPDX-License-Identifier: MIT
// The writes that have not ended, in the order in which they take effect.
#pragma once

#include <QString>
#include <QVector>

#include <map>
#include <optional>

namespace dx4::host {

/// What is to be written.
struct WriteWish {
    int station = 1;
    QString regType; ///< "F", "CW" or "FRE"
    int address = 0; ///< internal address of the first register
    QVector<quint16> values; ///< one per register
    bool always = false; ///< "F": write also what the station holds already
    bool readBack = false; ///< "F": read after the echo and compare; others cannot be read
};

/// A write on its way.
struct QueuedWrite {
    /// What it has the station asked next.
    enum class Request { Compare, Send, ReadBack };

    int id = 0;
    WriteWish wish;
    Request next = Request::Send;
    bool handedOver = false; ///< to the driver; it is too late to take it back
    bool sent = false; ///< at least once
    QVector<quint16> before; ///< what the station held when it was compared
};

/// Keeps a queue per station.
///
/// The first write of a station is brought to its end, compared, sent and read back, before the
/// second one is begun: none overtakes another, and what is read for one was written by none that
/// comes after it. Stations take turns, request by request, so that one with many writes, or a dead
/// one whose requests take their time, holds another up by one request and no more.
class WriteQueue {
public:
    void add(const QueuedWrite &write) { m_writes[write.id] = write; }
    void remove(int id) { m_writes.erase(id); }

    /// The write of this id, or null.
    QueuedWrite *find(int id);

    /// The first write of the station whose turn it is; null when there is none.
    QueuedWrite *next();

    /// The station had its turn.
    void passTurn(int station) { m_lastStation = station; }

    /// Writes whose effect a newer one makes void, by their ids: those of the same run that the
    /// driver does not have yet. Ordinary writes replace the station's last one alone, as leaving
    /// out one with others behind it would reorder effects. A stop replaces all of them: the drive
    /// is not to start once it was asked for.
    QVector<int> replacedBy(const WriteWish &newer, bool isStop) const;

    /// The value that a register is to have, as the newest write of it says.
    std::optional<quint16> waitingValue(int station, const QString &regType, int address) const;

    QVector<int> ids() const; ///< ascending
    int sizeOf(int station) const;
    int size() const { return static_cast<int>(m_writes.size()); }

private:
    std::map<int, QueuedWrite> m_writes; // by id, which is the order of submission
    int m_lastStation = 0;
};

} // namespace dx4::host
