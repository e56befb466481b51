// SPDX-License-Identifier: MIT
// How often parameters were written, and what was written, out of the journal.
#pragma once

#include "journal/journal_reader.h"
#include "panel/parameters/background.h"

#include <QObject>

#include <map>
#include <optional>
#include <utility>

namespace dx4::panel {

/// Where the journal of a line is.
struct LineJournal {
    QString path; ///< empty: there is none
    QString line; ///< what the line is called in it
};

/// One write of one parameter.
struct ParameterWrite {
    journal::Time time = 0; ///< ms since 1970, UTC
    std::optional<int> before; ///< none: it was not read
    int after = 0;
    int end = 0; ///< host::WriteEnd
};

/// Reads the journal on a thread of its own.
class ParameterJournal : public QObject {
    Q_OBJECT

public:
    static constexpr int mostListed = 200; ///< writes of one parameter, the newest

    ParameterJournal(Runner runner, const LineJournal &place, QObject *parent = nullptr);

    bool isThere() const { return !m_place.path.isEmpty(); }

    /// Reads the counts anew; changed() tells.
    void refresh();

    /// How often a parameter was written; nothing as long as the journal was not read.
    std::optional<qint64> writes(int station, int address) const;

    /// Lists what was written to a parameter; listed() tells.
    void list(int station, int address);

    /// Why the journal cannot be read; empty: it can.
    const QString &trouble() const { return m_trouble; }

Q_SIGNALS:
    void changed();

    /// @param writes  the newest first
    void listed(int station, int address, const QVector<ParameterWrite> &writes);

private:
    using Counts = std::map<std::pair<int, int>, qint64>; // by station and address

    const Runner m_runner;
    const LineJournal m_place;
    std::optional<Counts> m_counts;
    QString m_trouble;
    bool m_isAsked = false; // a reading of the counts is under way
};

} // namespace dx4::panel
