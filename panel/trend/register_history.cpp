// SPDX-License-Identifier: MIT
// One register over time, at several zoom levels.
#include "panel/trend/register_history.h"

#include <algorithm>

namespace dx4::panel {
namespace {

/// A journal states a value that stays at least that often, ms; see docs/journal.md.
constexpr Moment statedEvery = 120'000;

} // namespace

RegisterHistory::RegisterHistory(Counts counts)
{
    for (const HistoryLevel &level : historyLevels)
        m_levels.emplace_back(level.width, level.columns, counts);
}

void RegisterHistory::fillTo(Moment at)
{
    const Moment from = m_upTo.value_or(at);
    for (ColumnRing &level : m_levels) {
        if (m_isKnown)
            level.hold(from, at, m_value, m_quality);
        else
            level.leaveGap(from, at);
    }
    m_upTo = std::max(from, at);
}

void RegisterHistory::note(Moment at, quint16 value, bool failed)
{
    fillTo(at);
    const bool isSame = m_isKnown && m_value == value;
    m_isKnown = true;
    m_value = value;
    m_quality = failed ? ColumnQuality::Failed : ColumnQuality::Good;
    if (isSame)
        return;
    for (ColumnRing &level : m_levels)
        level.add(*m_upTo, value, m_quality);
}

void RegisterHistory::lose(Moment at)
{
    if (!m_isKnown)
        return;
    fillTo(at);
    m_isKnown = false;
    for (ColumnRing &level : m_levels)
        level.leaveGap(*m_upTo, *m_upTo + 1);
}

std::optional<quint16> RegisterHistory::value() const
{
    return m_isKnown ? std::optional<quint16>(m_value) : std::nullopt;
}

void RegisterHistory::addPast(std::size_t level, Moment rowWidth, const QVector<PastRow> &rows)
{
    ColumnRing &ring = m_levels.at(level);
    // From the newest to the oldest, as the ring grows at its old end.
    for (auto row = rows.crbegin(); row != rows.crend(); ++row) {
        const Moment end = row->at + rowWidth;
        // Whoever kept the newest row went away after it.
        const bool isNewest = row == rows.crbegin();
        const Moment next = isNewest ? end : std::prev(row)->at;
        const bool stays =
            !isNewest && row->column.isKnown() && !row->column.hasGap && next - end <= statedEvery;
        const quint16 last = row->column.last;
        const Column stayed { last, last, last, 0, row->column.quality, false };
        const Moment step = ring.width();
        for (Moment at = next - 1; stays && at >= end; at -= step)
            ring.addPast(at, stayed);
        Column past = row->column;
        past.hasGap = past.hasGap || !stays;
        ring.addPast(row->at, past);
    }
}

std::size_t RegisterHistory::levelFor(Moment from, Moment to, Moment now, int most)
{
    // What is not filled yet would look as if it reached further back.
    if (m_upTo)
        fillTo(now);
    std::size_t level = 0;
    const auto columns = [&](std::size_t of) { return (to - from) / m_levels[of].width() + 2; };
    while (level + 1 < m_levels.size() && columns(level) > most)
        ++level;
    for (std::size_t coarser = level + 1; coarser < m_levels.size(); ++coarser) {
        const bool isAllHere = m_levels[level].begin() <= from;
        const Moment reach = m_levels[coarser].begin() + m_levels[coarser].width();
        if (!isAllHere && reach < m_levels[level].begin())
            level = coarser;
    }
    return level;
}

void RegisterHistory::read(std::size_t level, Moment from, Moment to, Moment now, ColumnRun *run)
{
    run->columns.clear();
    if (m_upTo)
        fillTo(now);
    m_levels.at(level).read(from, to, run);
}

std::size_t RegisterHistory::bytes() const
{
    std::size_t sum = 0;
    for (const ColumnRing &level : m_levels)
        sum += level.bytes();
    return sum;
}

} // namespace dx4::panel
