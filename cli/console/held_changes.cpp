// SPDX-License-Identifier: MIT
// Changes that wait until the output takes lines again.
#include "cli/console/held_changes.h"

#include "cli/console/standard_streams.h"

#include <algorithm>
#include <utility>

namespace dx4::cli {

void HeldChanges::add(int row)
{
    const auto place = static_cast<std::size_t>(row);
    m_changes.resize(std::max(m_changes.size(), place + 1));
    ++m_changes[place];
    m_rows.insert(row);
}

void HeldChanges::say(const std::function<bool(int)> &say)
{
    while (!m_rows.empty() && outputFlows()) {
        const int row = *m_rows.begin();
        m_rows.erase(m_rows.begin());
        const int changes = std::exchange(m_changes[static_cast<std::size_t>(row)], 0);
        m_unshown += say(row) ? changes - 1 : changes;
    }
}

int HeldChanges::takeUnshown()
{
    return m_rows.empty() ? std::exchange(m_unshown, 0) : 0;
}

void HeldChanges::drop()
{
    for (const int row : std::exchange(m_rows, {}))
        m_unshown += std::exchange(m_changes[static_cast<std::size_t>(row)], 0);
}

} // namespace dx4::cli
