// SPDX-License-Identifier: MIT
// Values under watch: what they are called, what they show, how old that is.
#pragma once

#include "host/cycle.h"

#include <QVector>

#include <optional>

namespace dx4::cli {

/// One register with the name and the unit that a reader knows it by.
struct WatchedValue {
    int station = 1;
    QString regType;
    int address = 0; ///< internal address
    QString name;
    QString unit; ///< empty for a plain number
    int decimals = 0; ///< digits behind the point; the register counts in the last of them
    bool bits = false; ///< shown in hexadecimal
};

/// The register's value as a reader sees it, without its unit: "12.34", "0x0013".
QString formatValue(const WatchedValue &what, quint16 value);

/// A watched value as it stands.
struct WatchRow {
    WatchedValue what;
    host::RegisterState state;
    std::optional<host::Duration> answeredAt; ///< by the line's clock; empty: never yet
    std::optional<host::Duration> changedAt; ///< last time that the value became another
};

/// Follows a list of values through the steps of a cycle.
class WatchList {
public:
    explicit WatchList(const QVector<WatchedValue> &values);

    /// What to hand to Link::poll.
    QList<KEY_ADDRESS> addresses() const;

    /// Brings the rows up to date after a step.
    ///
    /// @param now  the line's clock
    void follow(const host::Link &link, const host::Cycle &cycle, host::Cycle::Step step,
                host::Duration now);

    const QVector<WatchRow> &rows() const { return m_rows; }

private:
    QVector<WatchRow> m_rows;
};

} // namespace dx4::cli
