// SPDX-License-Identifier: MIT
// Keys of a terminal that move a table.
#pragma once

#include <QByteArray>

#include <optional>

#include <termios.h>

namespace dx4::cli {

/// How far a table is to move.
struct Movement {
    int rows = 0; ///< down
    int pages = 0;
    bool toStart = false;
    bool toEnd = false;
};

/// Takes arrow and page keys apart that a terminal sends; other keys are passed over.
///
/// @param bytes  in: what was read; out: a sequence that is not whole yet
Movement movementOf(QByteArray &bytes);

/// Reads keys from standard input as they are typed, unseen, where that is a terminal and this
/// program is in its foreground. Signals of the keyboard stay what they are.
class ScrollKeys {
public:
    ScrollKeys() = default;
    ~ScrollKeys() { leave(); }
    ScrollKeys(const ScrollKeys &) = delete;
    ScrollKeys &operator=(const ScrollKeys &) = delete;

    void begin();

    /// Gives the terminal back as it was.
    void leave();

    /// Whether keys are read.
    bool areThere() const { return m_former.has_value(); }

    /// What was typed since the last call; never waits.
    Movement take();

private:
    std::optional<termios> m_former; // settings of the terminal before
    QByteArray m_pending;
};

} // namespace dx4::cli
