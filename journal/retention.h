// SPDX-License-Identifier: MIT
// Keeps a journal within its bounds.
#pragma once

#include "journal/history.h"

#include <set>

namespace dx4::journal {

/// Removes what is beyond the bounds, the oldest first. Call within a transaction.
class Retention {
public:
    /// @param database, writer  outlive this
    Retention(Database &database, HistoryWriter &writer, const Bounds &bounds);

    /// Removes rows beyond the bound of their table, and then more until the file is within its
    /// own.
    ///
    /// @param kinds  of the events that were added since the last time
    bool trim(const std::set<EventKind> &kinds);

private:
    bool trimEvents(EventKind kind);
    bool trimStarts();
    bool trimHistory();
    bool trimBytes();
    bool removeHistory(int level, qint64 upTo);
    bool removeSome(bool *isAnyLeft);
    qint64 bytes();

    Database &m_database;
    HistoryWriter &m_writer;
    const Bounds m_bounds;
};

} // namespace dx4::journal
