// SPDX-License-Identifier: MIT
// Another configuration for a link that runs.
#pragma once

#include "host/config.h"

namespace dx4::host {

/// Takes a new configuration over between two requests.
///
/// The driver's lists may not change while a request is in progress, so a configuration first
/// waits. Writes and condition reads that wait in the driver stay, cached values too. A file that
/// is wrong changes nothing.
class ConfigReload {
public:
    /// @param link, planner  outlive this; the planner has the link's block size
    /// @param current        what the link runs with
    ConfigReload(Link &link, Planner &planner, const Config &current);

    /// Reads and checks a file; it takes effect with apply(). One that already waits is replaced.
    ///
    /// @param errors  out: appended; may be null
    /// @return false when the file was refused
    bool prepare(const QString &path, QVector<ConfigError> *errors);

    bool isWaiting() const { return m_waiting.has_value(); }

    /// Polls what the waiting configuration wants; to be called before each step of the cycle.
    ///
    /// @return true when it took effect; false when none waits or a request is in progress
    bool apply();

    /// What the link runs with. Its line and link parts stay those of the start.
    const Config &current() const { return m_current; }

    /// The plan last applied; empty before the first.
    const Plan &plan() const { return m_plan; }

    /// Settings that differ in the configuration last prepared and need a restart of the link, by
    /// their keys, such as "line.speed".
    QStringList needRestart() const { return m_needRestart; }

private:
    Link &m_link;
    Planner &m_planner;
    Config m_current;
    Plan m_plan;
    std::optional<Config> m_waiting;
    Plan m_waitingPlan;
    QStringList m_needRestart;
};

} // namespace dx4::host
