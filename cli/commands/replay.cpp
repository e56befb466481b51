// SPDX-License-Identifier: MIT
// dx4 replay: a recording through the driver once more.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/line/watch_plan.h"
#include "cli/registers/frame_text.h"
#include "cli/registers/target.h"
#include "cli/registers/value_output.h"
#include "host/exchange/guarded_exchange.h"
#include "host/link/address_verdict.h"
#include "host/recording/pcap_file.h"
#include "host/recording/replay.h"

#include <algorithm>

namespace dx4::cli {
namespace {

struct Options {
    LineOptions line;
    QStringList words; ///< file, then addresses
    bool names = false;
};

/// What the recording's reads ask for, each once, as it seems to have been polled.
QList<KEY_ADDRESS> recordedReads(const QVector<host::RecordedFrame> &frames)
{
    QList<KEY_ADDRESS> reads;
    for (const host::RecordedFrame &frame : frames) {
        const FrameText text = explainFrame(frame.bytes);
        QString regType;
        int address = 0;
        const bool isRead = frame.isRequest && text.function == 3
            && findRegister(text.firstRegister, &regType, &address);
        const bool known = std::any_of(reads.cbegin(), reads.cend(), [&](const KEY_ADDRESS &read) {
            return read.station == text.station && read.regType == regType
                && read.address == address && read.count == text.count;
        });
        if (isRead && !known)
            reads.append(host::wanted(text.station, regType, address, text.count));
    }
    return reads;
}

void printChange(host::Link &link, const host::ValueChange &change, bool json,
                 const RegisterNames &names)
{
    if (!host::registerTypeNames().contains(change.name))
        return; // the outcome of a condition read
    const Target target { change.station, change.name, change.address, 1 };
    printValues(target, link.values(change.station, change.name, change.address), json, names);
}

int report(const host::ReplayResult &result)
{
    note(counted(result.played, "request", "requests") + QStringLiteral(" played"));
    if (result.unrecorded > 0)
        note(filled("%1 of the driver left out, as the recording does not have them there",
                    counted(result.unrecorded, "request", "requests")));
    if (result.complete)
        return ExitDone;
    return complain({ ExitFailed,
                      filled("the driver does not send %1; name the registers that were polled",
                             result.stoppedAt) });
}

int runReplay(const Options &options)
{
    QString error;
    const auto frames = host::readPcap(options.words.constFirst(), &error);
    if (!frames)
        return complain({ ExitFailed, error });
    Failure failure;
    QList<KEY_ADDRESS> blocks = recordedReads(*frames);
    const QStringList words = wordsOrConfigured(options.words.mid(1), options.line);
    if (!words.isEmpty()) {
        const auto plan = makePlan(words, options.line, &failure);
        if (!plan)
            return complain(failure);
        blocks = plan->blocks;
    }
    auto plugin = loadDriver(options.line.driver, &failure);
    if (!plugin)
        return complain(failure);
    host::ReplayLine line(*frames, options.line.plant.line);
    host::GuardedExchange exchange(line);
    host::Link link(std::move(plugin), options.line.plant.link);
    const RegisterNames names(options.line.plant, link.api(), options.names);
    link.onChange([&](const host::ValueChange &change) {
        printChange(link, change, options.line.json, names);
    });
    link.poll(blocks);
    for (const QString &text : host::unreadable(blocks))
        note(text + QStringLiteral("; read as the recording has it"));
    return report(host::replay(link, line, exchange));
}

} // namespace

void describeReplay(Command &command)
{
    Options &options = command.action(runReplay);
    command.words("file", options.words, "a capture, then the registers that were polled", anyFile);
    command.flag("--names", options.names, "with names and units of the simulated inverter");
    addLineOptions(command, options.line);
    command.example("dx4 replay line.pcap", "every change of a value, without a line");
}

} // namespace dx4::cli
