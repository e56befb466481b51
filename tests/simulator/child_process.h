// SPDX-License-Identifier: MIT
// A program run by a test, with its standard input and output on pipes.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// One child. Killed when it is still running at the end of the test.
class ChildProcess {
public:
    /// Starts `command`; its first word is a path or a name on PATH. Standard error goes into the
    /// same pipe as standard output when `withErrors`, else to the test's own.
    explicit ChildProcess(const std::vector<std::string> &command, bool withErrors = false);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// The next line without its end; "" at the end of the output or after half a minute without
    /// one.
    std::string readLine();

    /// The next line that holds `part`; "" when none comes.
    std::string readLineWith(const std::string &part);

    /// All output up to its end.
    std::string readAll();

    /// Writes a line to the child.
    void writeLine(const std::string &line);

    /// Ends the child's standard input.
    void closeInput();

    /// Reads no more: the child writes to a pipe without a reader.
    void closeOutput();

    /// Sends a signal.
    void signal(int number);

    /// Waits for the end; gives the exit code, -1 after a signal.
    int wait();

private:
    bool readMore();

    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
    std::string m_read;
};

/// Runs a command to its end and gives all it printed, errors included.
std::string outputOf(const std::vector<std::string> &command, int *exitCode = nullptr);
