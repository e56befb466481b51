// SPDX-License-Identifier: MIT
// Values under watch: what they are called, what they show, how old that is.
#pragma once

#include "cli/registers/register_pair.h"
#include "host/config/scaling.h"
#include "host/runtime/runtime.h"

#include <QMap>
#include <QVector>

#include <map>
#include <optional>
#include <utility>

namespace dx4::cli {

/// One register with the name and the scaling that a reader knows it by.
struct WatchedValue {
    int station = 1;
    QString regType;
    int address = 0; ///< internal address
    QString name;
    host::Scaling scaling; ///< as it is made: a plain number
    bool bits = false; ///< shown in hexadecimal

    /// What its bits say, by bit, or its values, by value.
    QMap<int, QString> words = {};
    Pair pair = {}; ///< whether the register behind it belongs to the number
};

/// Whether more is known than the plain number.
bool isDescribed(const WatchedValue &what);

/// Whether it has a name, or is another quantity than the number that the register holds.
bool isNamedOrScaled(const WatchedValue &what);

/// The register's value as a reader sees it, without its unit: "12.34", "0x0013".
///
/// @param value  of the register, or the bits of a pair
QString formatValue(const WatchedValue &what, quint32 value);

/// The same with its unit: "12.34 Hz".
QString quantityText(const WatchedValue &what, quint32 value);

/// What the value says: "ready, running", "overheat". Bits without a word are named by their
/// number; empty where nothing is known to be said.
QString meaningText(const WatchedValue &what, quint32 value);

/// A watched value as it stands.
struct WatchRow {
    WatchedValue what;
    host::Value state;
    std::optional<host::Duration> changedAt; ///< last time that the value became another
    quint16 second = 0; ///< of a pair: the register behind

    /// What was read: the register, or the bits of the pair.
    quint32 number() const
    {
        return what.pair.kind == Pair::Kind::None ? state.value
                                                  : what.pair.joined(state.value, second);
    }
};

/// Follows a list of values through the steps of a runtime, at a cost per step that does not grow
/// with the list: a step looks at the registers of its request, and at the next few of all others,
/// whose state may have become another without a request of theirs. A list of up to 64 rows is
/// looked at as a whole.
class WatchList {
public:
    /// @param runtime  outlives the list
    WatchList(const QVector<WatchedValue> &values, const host::Runtime &runtime);

    /// Brings rows up to date after a step.
    ///
    /// @param now  the line's clock
    void follow(host::Duration now);

    /// Brings `count` rows from `first` on up to date, no more than there are.
    void look(int first, int count, host::Duration now);
    void lookAtAll(host::Duration now);

    const QVector<WatchRow> &rows() const { return m_rows; }

    /// Numbers of the rows that are in another state than before, since the last call; a row may be
    /// named more than once.
    QVector<int> takeChanged();

private:
    using RunKey = std::pair<int, QString>; // station and type

    void lookAtRequest(host::Duration now);
    void lookAt(int row, host::Duration now);
    void lookAtSecond(WatchRow &row) const;

    const host::Runtime &m_runtime;
    QVector<WatchRow> m_rows;
    QVector<int> m_changed;
    std::map<RunKey, std::multimap<int, int>> m_places; // row numbers by address
    int m_next = 0; // row to look at, of those that have their turn
};

} // namespace dx4::cli
