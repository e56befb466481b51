// SPDX-License-Identifier: MIT
// How long stations take to answer, as bars.
#include "panel/lineview/answer_chart.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>

#include <algorithm>
#include <numeric>

namespace dx4::panel {
namespace {

constexpr int barGap = 6; // px between two bars
constexpr int lineGap = 4; // px between a bar and its texts
constexpr int leastBar = 2; // px: a single answer is seen beside a thousand

QString boundText(std::size_t index)
{
    const auto &bounds = host::turnaroundBounds;
    return index < bounds.size() ? QString::number(bounds.at(index))
                                 : QStringLiteral("> %1").arg(bounds.back());
}

/// Up to which bound so large a share of the answers came.
QString withinText(const host::RequestCounts &counts, quint64 all, double share)
{
    const auto wanted = static_cast<quint64>(static_cast<double>(all) * share + 0.999999);
    quint64 sum = 0;
    for (std::size_t i = 0; i < counts.turnaround.size(); ++i) {
        sum += counts.turnaround.at(i);
        if (sum < wanted)
            continue;
        const auto &bounds = host::turnaroundBounds;
        return i < bounds.size() ? AnswerChart::tr("within %1 ms").arg(bounds.at(i))
                                 : AnswerChart::tr("above %1 ms").arg(bounds.back());
    }
    return {};
}

} // namespace

AnswerChart::AnswerChart(QWidget *parent)
    : QWidget(parent)
{
}

void AnswerChart::setCounts(const host::RequestCounts &counts)
{
    if (m_counts == counts.turnaround)
        return;
    m_counts = counts.turnaround;
    update();
}

void AnswerChart::setTextSize(int size)
{
    setFont(sized(font(), size));
}

void AnswerChart::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    painter.fillRect(rect(), look.card);
    const int text = fontMetrics().height();
    const int base = height() - 2 * text - 2 * lineGap;
    const int highest = base - text - 2 * lineGap;
    const quint64 most = std::max<quint64>(*std::max_element(m_counts.begin(), m_counts.end()), 1);
    const int step = width() / static_cast<int>(m_counts.size());
    for (std::size_t i = 0; i < m_counts.size(); ++i) {
        const quint64 count = m_counts.at(i);
        const double part = static_cast<double>(count) / static_cast<double>(most);
        const int bar = count == 0 ? 0 : std::max(leastBar, static_cast<int>(part * highest));
        const QRect column(static_cast<int>(i) * step, 0, step, height());
        painter.fillRect(column.x() + barGap, base - bar, step - 2 * barGap, bar, look.accent);
        painter.setPen(look.text);
        if (count > 0)
            painter.drawText(QRect(column.x(), base - bar - lineGap - text, step, text),
                             Qt::AlignCenter, m_locale.toString(count));
        painter.setPen(look.faded);
        painter.drawText(QRect(column.x(), base + lineGap, step, text), Qt::AlignCenter,
                         boundText(i));
    }
    painter.setPen(look.edge);
    painter.drawLine(0, base, width(), base);
    painter.setPen(look.faded);
    painter.drawText(QRect(0, height() - text, width(), text), Qt::AlignCenter,
                     tr("Turnaround in ms, up to"));
}

QString answerSummary(const host::RequestCounts &counts, const QString &station)
{
    const auto &turnaround = counts.turnaround;
    const quint64 all = std::accumulate(turnaround.begin(), turnaround.end(), quint64(0));
    if (all == 0)
        return AnswerChart::tr("%1: no answer was counted").arg(station);
    return AnswerChart::tr("%1: half %2, 99 % %3, slowest %4")
        .arg(station, withinText(counts, all, 0.5), withinText(counts, all, 0.99),
             withinText(counts, all, 1.0));
}

} // namespace dx4::panel
