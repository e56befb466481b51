// SPDX-License-Identifier: MIT
// What is known of an adapter that may give every request back to its sender.
#pragma once

#include "host/line/line_settings.h"

namespace dx4::host {

/// Learns from exchanges whose replies differ from their requests whether the adapter echoes.
///
/// The reply of a single-register write equals its request, so one copy of it is a confirmation or
/// an echo. It may count as a confirmation only while the adapter is known not to echo: a write
/// that is reported though it never arrived is worse than one that is sent once more.
class AdapterEcho {
public:
    enum class State {
        Unknown, ///< one copy of a write proves nothing
        Absent, ///< one copy of a write is its reply
        Present, ///< the first copy of a write is the adapter's
    };

    /// @param mode  anything but Auto is believed for good
    explicit AdapterEcho(EchoMode mode)
        : m_mode(mode)
    {
    }

    State state() const;

    /// Exchanges in a row without an echo that it takes to believe in its absence.
    int cleanToBelieve() const;

    /// A request came back before its reply.
    void noteEcho();

    /// A reply came with nothing before it.
    void noteNoEcho();

    /// Of a write one copy came and nothing more: its station is silent, or what was learned is
    /// wrong.
    void noteLoneCopy() { m_echoes = 0; }

private:
    EchoMode m_mode;
    bool m_hasEchoed = false;
    int m_echoes = 0; ///< exchanges in a row
    int m_clean = 0; ///< exchanges in a row
};

/// Exchanges in a row that it takes to believe in an echo, or in its absence where there was none
/// since the line was opened.
inline constexpr int exchangesToBelieve = 3;

/// Exchanges in a row without one that it takes after an echo.
inline constexpr int cleanAfterAnEcho = 16;

} // namespace dx4::host
