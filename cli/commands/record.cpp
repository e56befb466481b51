// SPDX-License-Identifier: MIT
// dx4 record: the frames of a line in a file.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/polling.h"
#include "cli/line/recording.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/target.h"

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words; ///< file, then addresses
    int rounds = 0; ///< 0: until Ctrl-C
    int reconnect = -1; ///< s
    bool force = false; ///< whatever the file holds
};

/// Registers without a file would be recorded into a file of the first one's name.
bool namesFile(const QStringList &words, Failure *failure)
{
    const QString &first = words.constFirst();
    if (!namesRegisters(first))
        return true;
    return fail(failure,
                filled("\"%1\" is a register, and the file comes first: dx4 record line.pcap %2; a "
                       "file of that name is ./%1",
                       first, words.join(QLatin1Char(' '))));
}

/// Polls until it has had enough, or the file takes no more.
PollEnd keep(Session &session, host::FrameRing &ring, Recording &recording, const Options &options,
             qint64 reads)
{
    PollSettings settings;
    settings.enough = [&] {
        return recording.failed()
            || (reads > 0 && endedReads(session.runtime().counters()) >= reads);
    };
    settings.afterStep = [&] { recording.add(ring.takeEnded()); };
    settings.patience = patienceOf(options.reconnect, reads > 0);
    return poll(session, settings);
}

int runRecord(const Options &options)
{
    const QString file = options.words.constFirst();
    Failure failure;
    if (!namesFile(options.words, &failure))
        return complain(failure);
    const auto plan =
        makePlan(wordsOrConfigured(options.words.mid(1), options.line), options.line, &failure);
    if (!plan)
        return complain(failure);
    Recording recording(file);
    if (!recording.canBegin(options.force))
        return complain({ ExitFailed, recording.error() });
    host::FrameRing ring;
    SessionWishes wishes;
    wishes.ring = &ring;
    const auto session = Session::open(options.line, &failure, wishes);
    if (!session)
        return complain(failure);
    session->runtime().setPlan(*plan);
    recording.begin(session->line().now());
    const qint64 reads = options.rounds * static_cast<qint64>(plan->blocks.size());
    const PollEnd end = keep(*session, ring, recording, options, reads);
    const bool stopped = end != PollEnd::Asked || session->stopSafely();
    recording.add(ring.frames());
    recording.end();
    print(options.line.json,
          { { "file", file },
            { "frames", static_cast<qint64>(recording.frames()),
              counted(recording.frames(), "frame", "frames") } },
          "{frames} in {file}");
    if (recording.failed())
        return complain({ ExitFailed, recording.error() });
    return codeOfEnd(*session, end, options.rounds > 0, nullptr, stopped);
}

} // namespace

void describeRecord(Command &command)
{
    Options &options = command.action(runRecord);
    command.words("file", options.words, "a capture to write, then the registers to poll", anyFile);
    command.number("--rounds", options.rounds, "through all registers; 0 until Ctrl-C", 0, 1000000);
    command.flag("--force", options.force, "replace also a file that is no recording");
    addPollOptions(command, options.reconnect);
    addLineOptions(command, options.line);
    command.example("dx4 record --port /dev/ttyUSB0 --rounds 5 line.pcap D 0-3 SW",
                    "five rounds; the file opens in protocol analysers");
}

} // namespace dx4::cli
