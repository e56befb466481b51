// SPDX-License-Identifier: MIT
// The word that somebody probably meant.
#pragma once

#include "cli/console/filled.h"

#include <QStringList>

namespace dx4::cli {

/// The closest of the valid words, counted in letters to change, add, drop or swap; case counts as
/// a quarter of a change. Empty when none is close, that is within a third of the word's length, at
/// least 1.
QString nearestWord(const QString &word, const QStringList &valid);

/// "; did you mean "types"?", or nothing when no word is close.
QString suggestion(const QString &word, const QStringList &valid);

} // namespace dx4::cli
