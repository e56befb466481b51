// SPDX-License-Identifier: MIT
// A program run under a terminal of its own.
#pragma once

#include "screen.h"

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

/// A child whose three streams are a pseudo-terminal. Killed at the end of the test.
class TerminalProcess {
public:
    /// @param rows, columns  of the window
    explicit TerminalProcess(const std::vector<std::string> &command, int rows = 24,
                             int columns = 80);
    ~TerminalProcess();
    TerminalProcess(const TerminalProcess &) = delete;
    TerminalProcess &operator=(const TerminalProcess &) = delete;

    const Screen &screen() const { return m_screen; }

    /// Reads until the screen is as wanted; false after half a minute, or when the child has ended.
    bool waitFor(const std::function<bool(const Screen &)> &wanted);

    /// The same for a line of the screen that holds the text.
    bool waitForText(const std::string &text);

    /// Types a key; "\x03" is Ctrl-C.
    void type(const std::string &keys);

    /// Sends a signal.
    void signal(int number);

    /// Reads to the end; gives the exit code, -1 after a signal.
    int wait();

private:
    bool readMore();

    Screen m_screen;
    pid_t m_pid = -1;
    int m_terminal = -1;
};
