// SPDX-License-Identifier: MIT
// A program run by a test, with its standard input and output on pipes.
#include "child_process.h"

#include "../shared/usual_signals.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace {

constexpr int patienceMs = 30000; // a machine under load; nobody waits so long when all is well

void closeEnd(int &descriptor)
{
    if (descriptor >= 0)
        close(descriptor);
    descriptor = -1;
}

[[noreturn]] void become(const std::vector<std::string> &command)
{
    std::vector<char *> words;
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    execvp(words.front(), words.data());
    _exit(127);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string> &command, bool withErrors)
{
    int toChild[2];
    int fromChild[2];
    if (pipe2(toChild, O_CLOEXEC) != 0 || pipe2(fromChild, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    m_pid = fork();
    if (m_pid < 0)
        throw std::runtime_error("no process");
    if (m_pid == 0) {
        // A test that crashes must not leave its child behind, holding the test's own output open.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        takeSignalsAsUsual();
        dup2(toChild[0], STDIN_FILENO);
        dup2(fromChild[1], STDOUT_FILENO);
        if (withErrors)
            dup2(fromChild[1], STDERR_FILENO);
        become(command);
    }
    close(toChild[0]);
    close(fromChild[1]);
    m_input = toChild[1];
    m_output = fromChild[0];
    // A child that has ended must not end the test when it is written to.
    ::signal(SIGPIPE, SIG_IGN);
}

ChildProcess::~ChildProcess()
{
    closeInput();
    closeEnd(m_output);
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        wait();
    }
}

bool ChildProcess::readMore()
{
    pollfd waiting = { m_output, POLLIN, 0 };
    if (poll(&waiting, 1, patienceMs) <= 0)
        return false;
    char part[4096];
    const ssize_t count = read(m_output, part, sizeof part);
    if (count <= 0)
        return false;
    m_read.append(part, static_cast<std::size_t>(count));
    return true;
}

std::string ChildProcess::readLine()
{
    std::size_t end = m_read.find('\n');
    while (end == std::string::npos) {
        if (!readMore())
            return {};
        end = m_read.find('\n');
    }
    const std::string line = m_read.substr(0, end);
    m_read.erase(0, end + 1);
    return line;
}

std::string ChildProcess::readLineWith(const std::string &part)
{
    for (std::string line = readLine(); !line.empty(); line = readLine()) {
        if (line.find(part) != std::string::npos)
            return line;
    }
    return {};
}

std::string ChildProcess::readAll()
{
    while (readMore()) { }
    return m_read;
}

void ChildProcess::writeLine(const std::string &line)
{
    const std::string text = line + '\n';
    if (write(m_input, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the child takes no input");
}

void ChildProcess::closeInput()
{
    closeEnd(m_input);
}

void ChildProcess::closeOutput()
{
    closeEnd(m_output);
}

void ChildProcess::signal(int number)
{
    kill(m_pid, number);
}

int ChildProcess::wait()
{
    int status = 0;
    const pid_t ended = waitpid(m_pid, &status, 0);
    m_pid = -1;
    return ended > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string outputOf(const std::vector<std::string> &command, int *exitCode)
{
    ChildProcess child(command, true);
    child.closeInput();
    const std::string output = child.readAll();
    const int code = child.wait();
    if (exitCode)
        *exitCode = code;
    return output;
}
