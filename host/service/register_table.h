// SPDX-License-Identifier: MIT
// The registers of a line that somebody looks at, and what changed of them.
#pragma once

#include "host/service/line_snapshot.h"

#include <map>
#include <set>
#include <tuple>

namespace dx4::host {

struct Config;

/// Keeps what the runtime said of each register when it was last asked. Used on the line's thread.
class RegisterTable {
public:
    /// Shows the registers that a plan polls, besides those of add().
    void setPlan(const Plan &plan);

    /// Names and scaling of a configuration.
    ///
    /// @param link  for the driver's address checks
    void setLabels(const Config &config, const Link &link);

    /// Shows registers that are not polled, as those that are written.
    void add(int station, const QString &regType, int address, int count);

    /// Something happened to registers of this station.
    void touch(int station) { m_touched.insert(station); }
    void touchAll() { m_isAllTouched = true; }

    /// Asks for all registers of the stations that were touched.
    ///
    /// @return those of which more than the age is new
    QVector<RegisterValue> refresh(const Runtime &runtime, Duration now);

    /// All registers, with their ages at `now`.
    QVector<RegisterValue> all(Duration now) const;

    /// Stations of the registers.
    const std::set<int> &stations() const { return m_stations; }

private:
    using Key = std::tuple<int, QString, int>; // station, type, address
    struct Label {
        QString name;
        Scaling scaling;
    };
    struct Entry {
        RegisterValue shown;
        Duration readAt { 0 };
        bool isNew = true; ///< nobody was told of it
    };

    void rebuild();
    static bool renew(Entry &entry, const Value &state, Duration now);

    std::set<Key> m_polled;
    std::set<Key> m_added;
    std::map<Key, Label> m_labels;
    std::map<Key, Entry> m_entries;
    std::set<int> m_stations; // of them
    std::set<int> m_touched;
    bool m_isAllTouched = false;
};

} // namespace dx4::host
