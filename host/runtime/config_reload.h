// SPDX-License-Identifier: MIT
// Another configuration for a link that runs.
#pragma once

#include "host/config/config.h"

#include <functional>

namespace dx4::host {

class Runtime;

/// Settings that take effect with a new line and link alone and differ, by their keys, such as
/// "line.speed". A configuration that names no port wants the one that is open.
QStringList restartKeys(const Config &running, const Config &wanted);

/// Takes a new configuration over between two requests.
///
/// The driver's lists may not change while a request is in progress, so a configuration first
/// waits. Writes and condition reads that wait in the driver stay, cached values too. A file that
/// is wrong changes nothing.
class ConfigReload {
public:
    /// Takes over what a link polls; stops and extra gaps are not a link's.
    ///
    /// @param link, planner  outlive this; the planner has the link's block size
    /// @param current        what the link runs with
    ConfigReload(Link &link, Planner &planner, Config current);

    /// Takes over what a runtime polls, which stations it writes to, which it stops and how, and
    /// their extra gaps. A station that the new configuration does not name keeps its gap.
    ///
    /// @param runtime, planner  outlive this; the planner has the runtime's block size
    /// @param current           what the runtime runs with
    ConfigReload(Runtime &runtime, Planner &planner, Config current);

    /// Reads and checks a file; it takes effect with apply(). One that already waits is replaced.
    ///
    /// @param errors  out: appended; may be null
    /// @return false when the file was refused
    bool prepare(const QString &path, QVector<ConfigError> *errors);

    bool isWaiting() const { return m_waiting.has_value(); }

    /// Takes over what the waiting configuration wants; to be called before each step.
    ///
    /// @return true when it took effect; false when none waits or a request is in progress
    bool apply();

    /// What the link runs with. Its line and link parts stay those of the start. Whoever calls
    /// Runtime::stop() takes the time for it from here.
    const Config &current() const { return m_current; }

    /// The plan last applied; empty before the first.
    const Plan &plan() const { return m_plan; }

    /// What of the configuration last prepared waits for a restart, see restartKeys().
    QStringList needRestart() const { return m_needRestart; }

private:
    using Follow = std::function<void(const Config &, const Plan &)>;

    ConfigReload(Link &link, Planner &planner, Config current, Follow follow);

    Link &m_link;
    Planner &m_planner;
    Config m_current;
    Follow m_follow;
    Plan m_plan;
    std::optional<Config> m_waiting;
    Plan m_waitingPlan;
    QStringList m_needRestart;
};

} // namespace dx4::host
