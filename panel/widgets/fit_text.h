// SPDX-License-Identifier: MIT
// Texts of any length in places of a given size.
#pragma once

#include <QFontMetrics>
#include <QString>

namespace dx4::panel {

/// As much of a text as fits into lines of this width, broken between words; dots stand for what is
/// left out.
///
/// @param lines  1 or more
QString fittingText(const QFontMetrics &metrics, const QString &text, int width, int lines = 1);

} // namespace dx4::panel
