// SPDX-License-Identifier: MIT
// Lines of a trace as few and wide rectangles.
#include "panel/trendview/trace_bars.h"

#include <algorithm>
#include <iterator>

namespace dx4::panel {
namespace {

constexpr int narrow = 2; // px, of a column that is filled as a whole
constexpr int mostJoined = 32; // bars; what is common to more of them is little
constexpr int leastJoined = 3;

int widthOf(const QVector<QLine> &lines, int index, int thickness)
{
    const bool isUpright = lines.at(index).x1() == lines.at(index).x2();
    if (!isUpright || index + 1 >= lines.size())
        return thickness;
    const int column = lines.at(index + 1).x2() - lines.at(index + 1).x1();
    return column <= narrow ? std::max(thickness, column) : thickness;
}

bool areSideBySide(const QRect &bar, const QRect &next)
{
    return next.left() <= bar.right() + 1 && next.left() >= bar.left() && next.top() <= bar.bottom()
        && next.bottom() >= bar.top();
}

void appendJoined(QVector<QRect>::const_iterator first, QVector<QRect>::const_iterator end,
                  QVector<QRect> *joined)
{
    int top = first->top();
    int bottom = first->bottom();
    int right = first->right();
    for (auto bar = first; bar != end; ++bar) {
        top = std::max(top, bar->top());
        bottom = std::min(bottom, bar->bottom());
        right = std::max(right, bar->right());
    }
    if (end - first < leastJoined || top > bottom) {
        std::copy(first, end, std::back_inserter(*joined));
        return;
    }
    joined->append(QRect(QPoint(first->left(), top), QPoint(right, bottom)));
    for (auto bar = first; bar != end; ++bar) {
        if (bar->top() < top)
            joined->append(QRect(bar->topLeft(), QPoint(bar->right(), top - 1)));
        if (bar->bottom() > bottom)
            joined->append(QRect(QPoint(bar->left(), bottom + 1), bar->bottomRight()));
    }
}

} // namespace

QVector<QRect> barsOf(const QVector<QLine> &lines, int thickness)
{
    QVector<QRect> bars;
    bars.reserve(lines.size());
    for (int i = 0; i < lines.size(); ++i) {
        const QLine &line = lines.at(i);
        const auto across = std::minmax({ line.x1(), line.x2() });
        const auto down = std::minmax({ line.y1(), line.y2() });
        const int width = std::max(widthOf(lines, i, thickness), across.second - across.first);
        const QRect bar(across.first, down.first, width, down.second - down.first + thickness);
        if (bars.isEmpty() || !bars.constLast().contains(bar))
            bars.append(bar);
    }
    return bars;
}

QVector<QRect> joined(const QVector<QRect> &bars)
{
    QVector<QRect> joined;
    joined.reserve(bars.size());
    auto first = bars.begin();
    while (first != bars.end()) {
        int top = first->top();
        int bottom = first->bottom();
        auto end = std::next(first);
        for (; end != bars.end() && end - first < mostJoined; ++end) {
            top = std::max(top, end->top());
            bottom = std::min(bottom, end->bottom());
            if (!areSideBySide(*std::prev(end), *end) || top > bottom)
                break;
        }
        appendJoined(first, end, &joined);
        first = end;
    }
    return joined;
}

} // namespace dx4::panel
