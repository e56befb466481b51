// SPDX-License-Identifier: MIT
// The figures as a table and as JSON.
#pragma once

#include "figures.h"

#include <QByteArray>

namespace bench {

/// A Markdown table, one line per figure.
std::string tableOf(const std::vector<Figure> &figures);

/// {"rounds": n, "figures": [...]}, indented.
QByteArray jsonOf(const std::vector<Figure> &figures, int rounds);

} // namespace bench
