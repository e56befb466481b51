// SPDX-License-Identifier: MIT
// dx4 frames: the driver's requests, byte by byte.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/registers/frame_text.h"
#include "cli/registers/target.h"
#include "cli/registers/values.h"
#include "host/base/length.h"
#include "host/frames/modbus_frame.h"
#include "host/link/link.h"
#include "wire/limits.h"

namespace dx4::cli {
namespace {

struct Options {
    QString driver;
    QStringList words;
    int station = 1;
    int count = 0; ///< 0: as the address says
    int block = 16;
    bool json = false;
};

host::LinkSettings oneTry(int block)
{
    host::LinkSettings settings;
    settings.retryLimit = 1; // silence settles a request, the next one follows
    settings.blockSize = block;
    return settings;
}

void printFrame(const FRAME_PRO &frame, bool json)
{
    const QByteArray bytes = host::bytesOf(frame);
    const FrameText text = explainFrame(bytes);
    const QString where = frame.replyDataLength > 0
        ? filled(", registers from byte %1 on", frame.replyDataOffset)
        : QStringLiteral(", an echo");
    print(json,
          { { "frame", bytesText(bytes) },
            { "kind", text.kind },
            { "station", text.station },
            { "function", text.function },
            { "address", registerText(text.firstRegister) },
            { "count", text.count },
            { "fields", QJsonValue::Undefined, fieldLines(text).join(QLatin1Char('\n')) },
            { "replyLength", frame.replyLength },
            { "replyDataOffset", frame.replyDataOffset, where } },
          "{frame}\n{fields}\n expects {replyLength} bytes{replyDataOffset}");
}

/// Prints every frame that the driver builds until it has no request left.
int printFrames(host::Link &link, int expected, bool json)
{
    int printed = 0;
    int idle = 0;
    while (printed < expected && idle < 2) { // it pauses once after five writes
        FRAME_PRO frame;
        if (!link.nextFrame(frame)) {
            ++idle;
            continue;
        }
        idle = 0;
        ++printed;
        printFrame(frame, json);
        link.handReply(QByteArray());
    }
    return printed;
}

int runRead(const Options &options, std::unique_ptr<host::Plugin> plugin)
{
    Failure failure;
    QStringList words = options.words;
    const auto targets =
        parseCounted(words, options.count, options.station, ReadAccess, plugin->api(), &failure);
    if (!targets)
        return complain(failure);
    host::Link link(std::move(plugin), oneTry(options.block));
    for (const Target &target : *targets) {
        for (const Target &piece : pieces(target, options.block)) {
            link.poll({ host::wanted(piece.station, piece.regType, piece.address, piece.count) });
            printFrames(link, 1, options.json);
        }
    }
    return ExitDone;
}

int runWrite(const Options &options, std::unique_ptr<host::Plugin> plugin)
{
    Failure failure;
    const auto setting = parseSetting(options.words, options.station, plugin->api(), &failure);
    if (!setting)
        return complain(failure);
    host::Link link(std::move(plugin), oneTry(options.block));
    const Target &target = setting->target;
    link.write(target.station, target.regType, target.address, setting->values);
    const int waiting = link.waitingWrites();
    if (printFrames(link, waiting, options.json) == waiting)
        return ExitDone;
    return complain({ ExitUsage, QStringLiteral("the driver builds no frame for it") });
}

Options &addCommon(Command &command, int (*run)(const Options &, std::unique_ptr<host::Plugin>),
                   const char *help, const char *offer)
{
    Options &options = driverAction(command, run);
    command.words("address", options.words, help, offer);
    command.number("--station", options.station, "station to ask", 1, lastStation);
    command.number("--block", options.block, "most registers of one request", 1, largestBlock);
    command.flag("--json", options.json, "print one JSON object per frame");
    addDriverOption(command, options.driver);
    return options;
}

} // namespace

void describeFrames(Command &frames)
{
    Command read = frames.sub("read", "show the requests that read these registers");
    Options &reading = addCommon(read, runRead, "registers to read", readableRegister);
    read.number("--count", reading.count, "registers from the address on", 1, largestBlock);
    read.example("dx4 frames read D 0 --count 4 --station 3",
                 "the request for four monitor values");

    Command write = frames.sub("write", "show the requests that write these values");
    addCommon(write, runWrite, "address and values, such as F 8.2 20 15", writableRegister);
    write.example("dx4 frames write F 8.2 20 15", "both ramps in one request");
    describeFramesDecode(frames);
}

} // namespace dx4::cli
