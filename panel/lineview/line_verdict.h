// SPDX-License-Identifier: MIT
// One sentence that says what is wrong with a line.
#pragma once

#include "host/exchange/counters.h"

#include <QCoreApplication>
#include <QLocale>
#include <QVector>

namespace dx4::panel {

/// What was counted of one station.
struct StationCounts {
    int station = 0;
    QString name; ///< as the configuration has it; empty: none
    host::RequestCounts counts;
};

/// What the sentence is made of.
struct LineFacts {
    bool isOpen = true;
    QString downReason; ///< why it is not open
    QVector<StationCounts> stations; ///< ascending
};

struct LineVerdict {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::LineVerdict)

public:
    QString text; ///< what is wrong, and where to look; never empty
    bool isBad = false;
};

/// Failures from which a cause is told: fewer are chance.
inline constexpr quint64 leastFailures = 3;
inline constexpr double leastShare = 0.005; ///< of the requests of a station

/// The first rule that fits says it, the gravest first: a line that is not there, stations that do
/// not answer, replies that are damaged, replies of others, what stations refuse.
LineVerdict verdictOf(const LineFacts &facts, const QLocale &locale);

} // namespace dx4::panel
