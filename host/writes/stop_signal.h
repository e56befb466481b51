// SPDX-License-Identifier: MIT
// The signals that ask a program to end, turned into something its loop can see.
#pragma once

#include "host/line/line_settings.h"

namespace dx4::host {

/// While one of these lives, SIGINT, SIGTERM and SIGHUP do not end the program: they are noted, so
/// that its loop can end and send the safe stop. The handler does no more than async-signal-safe
/// calls; the stop itself belongs behind the loop, on the thread that runs the line.
///
///     StopSignal signal;
///     settings.pause = [&](Duration span) { signal.wait(span); };
///     runtime.run([&] { return signal.hasCome(); });
///     runtime.stop(budget);
///
/// A signal that was ignored before stays ignored, as nohup and shells in the background want it.
/// Signals are the process's: several may live at once, and each sees what came since the first of
/// them was made. Make them before other threads start. SIGKILL cannot be noted.
class StopSignal {
public:
    StopSignal();
    ~StopSignal(); ///< of the last one gives the signals back their former effect
    StopSignal(const StopSignal &) = delete;
    StopSignal &operator=(const StopSignal &) = delete;

    bool hasCome() const { return number() != 0; }

    /// The first that came, such as SIGTERM; 0 when none did.
    int number() const;

    /// How many came: whoever has waited for long enough behind the stop sees the next one.
    int count() const;

    /// Lets time pass, and returns early when a signal comes or has come since the last call. The
    /// calls after that take their time: the loop that stops the drives pauses too.
    void wait(Duration span);

    /// Becomes readable with the first signal, for poll() or a QSocketNotifier; not to be read from
    /// or closed. -1 where the system had none to give: only hasCome() works then.
    int descriptor() const;

private:
    bool m_hasWoken = false;
};

} // namespace dx4::host
