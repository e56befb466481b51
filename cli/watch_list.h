// SPDX-License-Identifier: MIT
// Values under watch: what they are called, what they show, how old that is.
#pragma once

#include "host/runtime.h"
#include "host/scaling.h"

#include <QVector>

#include <optional>

namespace dx4::cli {

/// One register with the name and the scaling that a reader knows it by.
struct WatchedValue {
    int station = 1;
    QString regType;
    int address = 0; ///< internal address
    QString name;
    host::Scaling scaling; ///< as it is made: a plain number
    bool bits = false; ///< shown in hexadecimal
};

/// Whether more is known than the plain number.
bool isDescribed(const WatchedValue &what);

/// The register's value as a reader sees it, without its unit: "12.34", "0x0013".
QString formatValue(const WatchedValue &what, quint16 value);

/// The same with its unit: "12.34 Hz".
QString quantityText(const WatchedValue &what, quint16 value);

/// A watched value as it stands.
struct WatchRow {
    WatchedValue what;
    host::Value state;
    std::optional<host::Duration> changedAt; ///< last time that the value became another
};

/// Follows a list of values through the steps of a runtime.
class WatchList {
public:
    explicit WatchList(const QVector<WatchedValue> &values);

    /// Brings the rows up to date after a step.
    ///
    /// @param now  the line's clock
    void follow(const host::Runtime &runtime, host::Duration now);

    const QVector<WatchRow> &rows() const { return m_rows; }

private:
    QVector<WatchRow> m_rows;
};

} // namespace dx4::cli
