// SPDX-License-Identifier: MIT
// Another configuration for a link that runs.
#include "host/runtime/config_reload.h"

#include "host/runtime/config_runtime.h"

#include <utility>

namespace dx4::host {

ConfigReload::ConfigReload(Link &link, Planner &planner, Config current)
    : ConfigReload(link, planner, std::move(current),
                   [&link](const Config &, const Plan &plan) { link.poll(plan.blocks); })
{
}

ConfigReload::ConfigReload(Runtime &runtime, Planner &planner, Config current)
    : ConfigReload(
        runtime.link(), planner, std::move(current),
        [&runtime](const Config &config, const Plan &plan) { takeOver(runtime, config, plan); })
{
}

ConfigReload::ConfigReload(Link &link, Planner &planner, Config current, Follow follow)
    : m_link(link)
    , m_planner(planner)
    , m_current(std::move(current))
    , m_follow(std::move(follow))
{
}

bool ConfigReload::prepare(const QString &path, QVector<ConfigError> *errors)
{
    auto config = loadConfig(path, errors);
    if (!config)
        return false;
    auto plan = planOf(*config, m_planner, errors);
    if (!plan)
        return false;
    m_needRestart = restartKeys(m_current, *config);
    config->line = m_current.line;
    config->link = m_current.link;
    m_waiting = std::move(config);
    m_waitingPlan = std::move(*plan);
    return true;
}

bool ConfigReload::apply()
{
    const bool requestInProgress = !m_link.api().state->sendFrames.isEmpty();
    if (!m_waiting || requestInProgress)
        return false;
    m_follow(*m_waiting, m_waitingPlan);
    m_current = std::move(*m_waiting);
    m_plan = std::move(m_waitingPlan);
    m_waiting.reset();
    return true;
}

QStringList restartKeys(const Config &running, const Config &wanted)
{
    QStringList keys;
    const auto compare = [&keys](bool same, const QString &key) {
        if (!same)
            keys.append(key);
    };
    const LineSettings &a = running.line;
    const LineSettings &b = wanted.line;
    // Without a port the file has no say in it: the host named the one that is open.
    compare(b.port.isEmpty() || a.port == b.port, QStringLiteral("line.port"));
    compare(a.speed == b.speed, QStringLiteral("line.speed"));
    compare(a.parity == b.parity, QStringLiteral("line.parity"));
    compare(a.stopBits == b.stopBits, QStringLiteral("line.stop_bits"));
    compare(a.responseTimeout == b.responseTimeout, QStringLiteral("line.timeout_ms"));
    compare(a.gap == b.gap, QStringLiteral("line.gap"));
    compare(a.echo == b.echo, QStringLiteral("line.echo"));
    compare(a.kernelSwitchesDirection == b.kernelSwitchesDirection, QStringLiteral("line.rs485"));
    compare(a.isShared == b.isShared, QStringLiteral("line.shared"));
    compare(running.link.retryLimit == wanted.link.retryLimit, QStringLiteral("link.tries"));
    compare(running.link.blockSize == wanted.link.blockSize, QStringLiteral("link.block_size"));
    return keys;
}

} // namespace dx4::host
