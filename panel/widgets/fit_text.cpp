// SPDX-License-Identifier: MIT
// Texts of any length in places of a given size.
#include "panel/widgets/fit_text.h"

#include <QStringList>

namespace dx4::panel {
namespace {

/// How many of the words from `first` on fit into one line; at least one.
int wordsOfLine(const QFontMetrics &metrics, const QStringList &words, int first, int width)
{
    QString line = words.at(first);
    int count = 1;
    while (first + count < words.size()) {
        line += QLatin1Char(' ') + words.at(first + count);
        if (metrics.horizontalAdvance(line) > width)
            break;
        ++count;
    }
    return count;
}

/// Elided only where it has to be: the metrics elide also what just fits.
QString fittingLine(const QFontMetrics &metrics, const QString &line, int width)
{
    if (metrics.horizontalAdvance(line) <= width)
        return line;
    return metrics.elidedText(line, Qt::ElideRight, width);
}

} // namespace

QString fittingText(const QFontMetrics &metrics, const QString &text, int width, int lines)
{
    const QStringList words = text.split(QLatin1Char(' '));
    QStringList fitting;
    int next = 0;
    while (next < words.size() && fitting.size() < lines) {
        const bool isLast = fitting.size() + 1 == lines;
        const int count = isLast ? static_cast<int>(words.size()) - next
                                 : wordsOfLine(metrics, words, next, width);
        const QString line = QStringList(words.mid(next, count)).join(QLatin1Char(' '));
        fitting.append(fittingLine(metrics, line, width));
        next += count;
    }
    return fitting.join(QLatin1Char('\n'));
}

} // namespace dx4::panel
