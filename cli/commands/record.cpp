// SPDX-License-Identifier: MIT
// dx4 record: the frames of a line in a file.
#include "cli/commands/record.h"

#include "cli/output.h"
#include "cli/polling.h"
#include "cli/watch_plan.h"
#include "host/length.h"
#include "host/pcap_file.h"

namespace dx4::cli {
namespace {

constexpr int mostFrames = 1000000; // some hours of a busy line

struct Options {
    LineOptions line;
    QStringList words; ///< file, then addresses
    int rounds = 0; ///< 0: until Ctrl-C
    int reconnect = -1; ///< s
};

void report(const QString &file, const host::FrameRing &ring, bool json)
{
    const int frames = host::lengthOf(ring.frames());
    if (json) {
        printJson({ { QStringLiteral("file"), file },
                    { QStringLiteral("frames"), frames },
                    { QStringLiteral("forgotten"), static_cast<qint64>(ring.forgotten()) } });
        return;
    }
    printLine(QStringLiteral("%1 in %2")
                  .arg(counted(static_cast<quint64>(frames), "frame", "frames"), file));
    if (ring.forgotten() > 0)
        note(QStringLiteral("record"),
             QStringLiteral("the first %1 frames were forgotten").arg(ring.forgotten()));
}

int runRecord(const Options &options)
{
    const QString name = QStringLiteral("record");
    const QString file = options.words.constFirst();
    Failure failure;
    const auto plan =
        makePlan(wordsOrConfigured(options.words.mid(1), options.line), options.line, &failure);
    if (!plan || !canBeWritten(file, &failure))
        return complain(name, failure);
    host::FrameRing ring(mostFrames);
    SessionWishes wishes;
    wishes.ring = &ring;
    const auto session = Session::open(options.line, &failure, wishes);
    if (!session)
        return complain(name, failure);
    session->runtime().setPlan(*plan);
    const qint64 reads = options.rounds * static_cast<qint64>(plan->blocks.size());
    PollSettings settings;
    settings.enough = [&] {
        return reads > 0 && endedReads(session->runtime().counters()) >= reads;
    };
    settings.patience = patienceOf(options.reconnect, reads > 0);
    const PollEnd end = poll(*session, name, settings);
    const bool stopped = end != PollEnd::Asked || session->stopSafely(name);
    QString error;
    // What was heard until the line broke is worth most.
    if (!host::writePcap(file, ring.frames(), host::wallClockOffset(session->line().now()), &error))
        return complain(name, { ExitFailed, error });
    report(file, ring, options.line.json);
    if (end == PollEnd::LineGone)
        return complainLineGone(*session, name);
    return stopped ? ExitDone : ExitFailed;
}

} // namespace

void addRecord(CommandLine &line)
{
    Command command = line.add("record", "poll and keep every frame in a file");
    const auto options = std::make_shared<Options>();
    command.words("file", options->words, "a capture to write, then the registers to poll");
    command.number("--rounds", options->rounds, "through all registers; 0 until Ctrl-C", 0,
                   1000000);
    addPollOptions(command, options->reconnect);
    addLineOptions(command, options->line, QStringLiteral("record"));
    command.example(QStringLiteral("dx4 record --port /dev/ttyUSB0 --rounds 5 line.pcap D 0-3 SW"),
                    QStringLiteral("five rounds; the file opens in protocol analysers"));
    command.action([options] { return runRecord(*options); });
}

} // namespace dx4::cli
