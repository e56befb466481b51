// SPDX-License-Identifier: MIT
// Signals of a child that is about to become another program.
#pragma once

#include <csignal>

/// Has the signals that end a program do so again. Whoever runs the tests may have them ignored, as
/// nohup and jobs in the background do; children would inherit that, and a test that ends one by
/// such a signal would wait for ever.
inline void takeSignalsAsUsual()
{
    for (const int number : { SIGHUP, SIGINT, SIGQUIT, SIGTERM })
        std::signal(number, SIG_DFL);
}
