// SPDX-License-Identifier: MIT
// A program run under a terminal of its own.
#include "terminal_process.h"

#include "../shared/usual_signals.h"

#include <array>
#include <chrono>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int patience = 30000; // ms

} // namespace

TerminalProcess::TerminalProcess(const std::vector<std::string> &command, int rows, int columns)
    : m_screen(columns)
{
    winsize size {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    std::vector<char *> words;
    words.reserve(command.size() + 1);
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    m_pid = forkpty(&m_terminal, nullptr, nullptr, &size);
    if (m_pid == 0) {
        takeSignalsAsUsual();
        execvp(words.front(), words.data());
        _exit(127);
    }
}

TerminalProcess::~TerminalProcess()
{
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    close(m_terminal);
}

bool TerminalProcess::readMore()
{
    pollfd watched { m_terminal, POLLIN, 0 };
    if (poll(&watched, 1, patience) <= 0)
        return false;
    std::array<char, 4096> part {};
    const ssize_t count = read(m_terminal, part.data(), part.size());
    if (count <= 0)
        return false;
    m_screen.write(std::string(part.data(), static_cast<std::size_t>(count)));
    return true;
}

bool TerminalProcess::waitFor(const std::function<bool(const Screen &)> &wanted)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patience);
    while (!wanted(m_screen)) {
        if (std::chrono::steady_clock::now() > end || !readMore())
            return wanted(m_screen);
    }
    return true;
}

bool TerminalProcess::waitForText(const std::string &text)
{
    return waitFor([&text](const Screen &screen) { return !screen.lineWith(text).empty(); });
}

void TerminalProcess::type(const std::string &keys)
{
    [[maybe_unused]] const ssize_t written = write(m_terminal, keys.data(), keys.size());
}

void TerminalProcess::signal(int number)
{
    kill(m_pid, number);
}

int TerminalProcess::wait()
{
    while (readMore())
        ;
    int status = 0;
    waitpid(m_pid, &status, 0);
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
