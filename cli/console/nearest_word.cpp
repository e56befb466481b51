// SPDX-License-Identifier: MIT
// The word that somebody probably meant.
#include "cli/console/nearest_word.h"

#include "host/base/length.h"

#include <QVector>

#include <algorithm>
#include <utility>

namespace dx4::cli {
namespace {

constexpr int wholeChange = 4; // distances count in quarters of a change, so that case can be one
constexpr int caseChange = 1;

int changeCost(QChar left, QChar right)
{
    if (left == right)
        return 0;
    return left.toLower() == right.toLower() ? caseChange : wholeChange;
}

int distance(const QString &left, const QString &right)
{
    const int columns = host::lengthOf(right) + 1;
    QVector<int> before(columns);
    QVector<int> row(columns);
    QVector<int> next(columns);
    for (int column = 0; column < columns; ++column)
        row[column] = column * wholeChange;
    for (int i = 1; i <= host::lengthOf(left); ++i) {
        next[0] = i * wholeChange;
        for (int j = 1; j < columns; ++j) {
            const QChar here = left.at(i - 1);
            next[j] = std::min({ row[j] + wholeChange, next[j - 1] + wholeChange,
                                 row[j - 1] + changeCost(here, right.at(j - 1)) });
            const bool swapped =
                i > 1 && j > 1 && here == right.at(j - 2) && left.at(i - 2) == right.at(j - 1);
            if (swapped)
                next[j] = std::min(next[j], before[j - 2] + wholeChange);
        }
        before = std::exchange(row, next);
    }
    return row.constLast();
}

} // namespace

QString nearestWord(const QString &word, const QStringList &valid)
{
    QString nearest;
    int smallest = std::max(wholeChange, wholeChange * host::lengthOf(word) / 3) + 1;
    for (const QString &candidate : valid) {
        const int changes = distance(word, candidate);
        if (changes >= smallest || changes >= wholeChange * host::lengthOf(candidate))
            continue;
        smallest = changes;
        nearest = candidate;
    }
    return nearest;
}

QString suggestion(const QString &word, const QStringList &valid)
{
    const QString nearest = nearestWord(word, valid);
    return nearest.isEmpty() ? QString() : filled("; did you mean \"%1\"?", nearest);
}

} // namespace dx4::cli
