// SPDX-License-Identifier: MIT
// Standard output and standard error, written without holding up the line.
#include "cli/console/standard_streams.h"

#include "cli/console/exit_code.h"
#include "cli/console/interrupt.h"
#include "common/output_stream.h"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <termios.h>
#include <unistd.h>

namespace dx4::cli {

using common::OutputStream;

namespace {

constexpr int mostHeldBack = 16384; // bytes that wait before views keep their news back
constexpr host::Duration orderPatience = std::chrono::milliseconds(100);
constexpr host::Duration lastPatience = std::chrono::milliseconds(500); // without a byte taken

OutputStream &output()
{
    static auto *const stream = new OutputStream(STDOUT_FILENO);
    return *stream;
}

OutputStream &talk()
{
    static auto *const stream = [] {
        auto *const made = new OutputStream(STDERR_FILENO, mostHeldBack);
        made->tellGapsAs(
            [](int count) { return "dx4: " + std::to_string(count) + " messages not shown\n"; });
        return made;
    }();
    return *stream;
}

int untoldFrames = 0;
bool traces = false; // frames are shown: no wait for a stream, however short

// Bytes that waited when a stream was last found held.
int outputHeldAt = 0;
int talkHeldAt = 0;

/// Both streams are often one terminal: what was written first has to stand first. A stream that is
/// held is not waited for once more until it moves.
void keepOrder(OutputStream &before, int &heldAt)
{
    const int waiting = before.waiting();
    if (traces || waiting == 0 || waiting == heldAt)
        return;
    heldAt = before.drain(0, orderPatience) ? 0 : before.waiting();
}

/// Whether a last wait should end: for a signal that comes while it lasts or, where one has come
/// before, for a reader who does not go on.
class LastWait {
public:
    explicit LastWait(const OutputStream &stream)
        : m_stream(stream)
        , m_waiting(stream.waiting())
    {
    }

    bool isOver()
    {
        suspendIfAsked();
        if (signalsSoFar() != m_signals)
            return true;
        if (m_stream.waiting() != m_waiting) {
            m_waiting = m_stream.waiting();
            m_since = std::chrono::steady_clock::now();
        }
        return m_wasAsked && std::chrono::steady_clock::now() - m_since > lastPatience;
    }

private:
    const OutputStream &m_stream;
    const int m_signals = signalsSoFar();
    const bool m_wasAsked = interrupted();
    int m_waiting;
    std::chrono::steady_clock::time_point m_since = std::chrono::steady_clock::now();
};

/// Ends a Ctrl-S: what waits may be what gives the terminal its cursor back. The terminal cannot be
/// told to go on unless it was told to hold on here; a program in the background may do both only
/// while it does not listen to SIGTTOU.
void releaseTerminal()
{
    if (!isatty(STDOUT_FILENO))
        return;
    const auto former = std::signal(SIGTTOU, SIG_IGN);
    tcflow(STDOUT_FILENO, TCOOFF);
    tcflow(STDOUT_FILENO, TCOON);
    std::signal(SIGTTOU, former);
}

bool finish(OutputStream &stream)
{
    LastWait wait(stream);
    if (stream.drain(0, [&wait] { return wait.isOver(); }))
        return true;
    releaseTerminal();
    return stream.drain(0, orderPatience);
}

} // namespace

void writeText(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    constexpr int piece = OutputStream::mostWaiting / 2;
    keepOrder(talk(), talkHeldAt);
    for (int done = 0; done < bytes.size(); done += piece) {
        const std::string part = bytes.mid(done, piece).toStdString();
        while (!output().put(part) && output().drain(piece, shouldEnd)) { }
    }
}

bool outputFlows()
{
    return output().waiting() < mostHeldBack;
}

bool outputIsTaken()
{
    return output().waiting() == 0;
}

void writeTalk(const QString &text)
{
    keepOrder(output(), outputHeldAt);
    talk().putOrCount(text.toStdString());
}

void writeTrace(const QString &line)
{
    traces = true;
    const QString missed = untoldFrames == 0
        ? QString()
        : filled("... %1 lines of the trace not shown\n", untoldFrames);
    const bool isPut = talk().put((missed + line + QLatin1Char('\n')).toStdString());
    untoldFrames = isPut ? 0 : untoldFrames + 1;
}

void settleStreams()
{
    output().drain(0, orderPatience);
    talk().drain(0, orderPatience);
}

int finishOutput(int exitCode)
{
    const bool wasAsked = interrupted();
    if (!finish(output())) {
        note(filled("standard output: its reader did not take the last %1 bytes",
                    output().waiting()));
        if (exitCode == ExitDone && !wasAsked)
            exitCode = ExitInterrupted;
    }
    finish(talk());
    return exitCode;
}

QString outputLoss()
{
    const int reason = output().error();
    if (reason == 0 || reason == EPIPE)
        return QString();
    return QString::fromStdString(std::generic_category().message(reason));
}

} // namespace dx4::cli
