// SPDX-License-Identifier: MIT
// What standard output can show.
#pragma once

#include "cli/console/filled.h"

#include <QStringList>

namespace dx4::cli {

/// Columns that every output fits into.
inline constexpr int terminalColumns = 80;

/// Abilities of standard output.
struct Terminal {
    bool live = false; ///< lines can be drawn over
    bool colour = false; ///< live, and the user has not set NO_COLOR

    int columns = terminalColumns; ///< of the window
    int rows = 24;

    /// Looks at standard output and the environment.
    ///
    /// @param trace  frames go to standard error: where that is a terminal too, nothing is drawn
    ///               over
    static Terminal detect(bool trace = false);

    /// Asks for the size of the window, which a user may change at any time.
    void measure();

    enum class Style { Bold, Dim, Changed, Warning, Failed };

    /// The text in lines that fit the window, broken at blanks; a word that is longer stays whole.
    QStringList folded(const QString &text) const;

    /// The text in this style; as it is where there is no colour.
    QString styled(const QString &text, Style style) const;
};

} // namespace dx4::cli
