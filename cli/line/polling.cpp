// SPDX-License-Identifier: MIT
// The loop of the commands that poll: until enough, until Ctrl-C, and through a line that breaks.
#include "cli/line/polling.h"

#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "cli/registers/reply_text.h"
#include "host/frames/verdict_text.h"

#include <algorithm>

namespace dx4::cli {
namespace {

constexpr host::Duration usualPatience = std::chrono::seconds(10);
constexpr int longestPatience = 86400; // s
constexpr host::Duration longestRest = std::chrono::milliseconds(100); // ages are shown meanwhile

/// Lets some of the time pass that is left until the next step is due. @return whether there is any
bool rested(const PollSettings &settings)
{
    const host::Duration rest = settings.rest ? settings.rest() : host::Duration { 0 };
    if (rest <= host::Duration { 0 })
        return false;
    if (settings.afterStep)
        settings.afterStep();
    pauseFor(std::min(rest, longestRest));
    return true;
}

} // namespace

void addPollOptions(Command &command, int &seconds)
{
    command.remark("Ended by hand, it first sends the stop of the configuration. "
                   "Ended by itself,\nit stops nothing: drives that turn go on.");
    command.number("--reconnect", seconds, "seconds to wait for a line that broke", 0,
                   longestPatience);
}

std::optional<host::Duration> patienceOf(int seconds, bool hasEnd)
{
    if (seconds >= 0)
        return std::chrono::seconds(seconds);
    return hasEnd ? std::optional(usualPatience) : std::nullopt;
}

int codeOfEnd(Session &session, PollEnd end, bool hasEnd, const char *wish, bool stopped)
{
    if (end == PollEnd::LineGone) {
        session.noteUnstopped();
        session.warnOfMotors();
        return complain({ ExitLine, filled("%1 broke", session.options().plant.line.port) });
    }
    const host::ReplyVerdict verdict = session.verdict();
    if (end == PollEnd::Enough && wish && session.runtime().counters().reads().good == 0)
        return complain(
            { causeCode(verdict), filled("nothing was %1: %2", wish, host::verdictText(verdict)) });
    const bool isCut = end == PollEnd::Asked && hasEnd && interrupted();
    const int exitCode =
        isCut ? complain({ ExitInterrupted, QStringLiteral("interrupted") }) : ExitDone;
    return stopped ? exitCode : ExitFailed;
}

PollEnd poll(Session &session, const PollSettings &settings)
{
    using Step = host::Runtime::Step;
    const QString &port = session.options().plant.line.port;
    const auto tell = [&](const QString &text) {
        settings.onLine ? settings.onLine(text) : note(text);
    };
    std::optional<host::Duration> downSince;
    while (!shouldEnd()) {
        session.giveWayIfAsked();
        if (!outputLoss().isEmpty())
            return PollEnd::OutputLost;
        if (settings.enough())
            return PollEnd::Enough;
        if (rested(settings))
            continue;
        const Step step = session.runtime().step();
        const host::Duration now = session.line().now();
        const bool isOpen = session.line().isOpen();
        const bool isGone =
            !isOpen && settings.patience && now - downSince.value_or(now) >= *settings.patience;
        if (!isOpen && !downSince && !isGone)
            tell(filled("%1 broke; waiting for it", port));
        if (isOpen && downSince)
            tell(filled("%1 is back", port));
        downSince = isOpen ? std::nullopt : std::optional(downSince.value_or(now));
        if (settings.afterStep)
            settings.afterStep();
        if (isGone)
            return PollEnd::LineGone;
        if (step == Step::Idle || step == Step::LineDown)
            pauseFor(session.runtime().idleTime());
    }
    return PollEnd::Asked;
}

qint64 endedReads(const host::CounterSet &counters)
{
    return static_cast<qint64>(counters.endedReads());
}

} // namespace dx4::cli
