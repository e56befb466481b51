// SPDX-License-Identifier: MIT
// dx4 frames decode: a request or a reply explained.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/registers/frame_text.h"
#include "cli/registers/reply_text.h"
#include "host/base/length.h"
#include "host/frames/modbus_frame.h"
#include "host/frames/reply_check.h"
#include "host/frames/verdict_text.h"
#include "host/link/link.h"
#include "host/link/notation.h"
#include "register_tables.h"

#include <QJsonArray>

namespace dx4::cli {
namespace {

// In the table of types.
constexpr int parameterType = 0;
constexpr int monitorType = 1;
constexpr int controlWordType = 2;
constexpr int statusWordType = 4;

struct Options {
    QString driver;
    QStringList words;
    QString request;
    bool json = false;
};

/// What the loaded driver makes of the frame.
struct Opinion {
    bool asked = false;
    QString text;
    ExitCode code = ExitDone;
};

/// Registers that a host may ask the driver for, by type and internal address.
struct Asked {
    QString regType;
    int address = 0;
};

bool isWrite(const FrameText &text)
{
    return !text.values.isEmpty();
}

/// What the driver has to be asked for to come to this register. The encoders look no address up:
/// they add it to the type's base or take its low byte, so that they reach registers which no
/// address of the catalogue names.
std::optional<Asked> askedFor(const FrameText &text)
{
    Asked asked;
    if (findRegister(text.firstRegister, &asked.regType, &asked.address))
        return asked;
    const int high = text.firstRegister / 256;
    const int low = text.firstRegister % 256;
    const bool isMonitor = high * 256 == REG_OFFSETADDR[monitorType];
    if (isMonitor && !isWrite(text))
        return Asked { REG_LIST[monitorType], low };
    if (high == 0) // a group behind the last has no code
        return Asked { REG_LIST[parameterType], parameterGroupCount * 256 + low };
    if (isWrite(text) && text.values.size() > 1)
        return std::nullopt;
    const int type = isWrite(text) ? controlWordType : statusWordType;
    return Asked { REG_LIST[type], text.firstRegister - REG_OFFSETADDR[type] };
}

/// Has the driver build the request that these bytes seem to be.
bool buildAlike(host::Link &link, const FrameText &text, FRAME_PRO &frame)
{
    const auto asked = askedFor(text);
    if (!asked)
        return false;
    if (isWrite(text))
        link.write(text.station, asked->regType, asked->address, text.values);
    else
        link.poll({ host::wanted(text.station, asked->regType, asked->address, text.count) });
    return link.nextFrame(frame);
}

bool isRequest(const FrameText &text)
{
    return text.firstRegister >= 0 && (text.function == 3 || isWrite(text));
}

/// Whether the driver's own check lets a host ask for that.
bool isAcceptable(const host::DriverApi &api, const Asked &asked, const FrameText &text)
{
    int address = 0;
    const int code =
        api.checkAddr(asked.regType, host::addressText(asked.regType, asked.address), &address, 0,
                      text.count, isWrite(text) ? WriteAccess : ReadAccess);
    return code == AddressAccepted && address == asked.address;
}

Opinion aboutRequest(host::Link &link, const QByteArray &bytes, const FrameText &text)
{
    FRAME_PRO built;
    if (!buildAlike(link, text, built))
        return { true, QStringLiteral("the driver builds no such request"), ExitDone };
    const QByteArray own = host::bytesOf(built);
    if (own != bytes)
        return { true, filled("the driver builds %1", bytesText(own)), ExitDone };
    const Asked asked = *askedFor(text);
    if (isAcceptable(link.api(), asked, text))
        return { true, QStringLiteral("the driver builds the same bytes"), ExitDone };
    return {
        true,
        filled(
            "the driver builds the same bytes for %1 %2, count %3, which its address check refuses",
            asked.regType, host::addressText(asked.regType, asked.address), text.count),
        ExitDone
    };
}

Opinion aboutReply(host::Link &link, const QByteArray &request, const FrameText &asked,
                   const QByteArray &reply)
{
    FRAME_PRO built;
    if (!isRequest(asked) || !buildAlike(link, asked, built))
        return { true, QStringLiteral("the driver builds no such request"), ExitUsage };
    if (host::bytesOf(built) != request)
        return { true,
                 filled("the driver builds %1 in place of that request",
                        bytesText(host::bytesOf(built))),
                 ExitUsage };
    const host::ReplyVerdict verdict = host::checkReply(built, reply);
    QString errorText;
    const bool accepted = link.handReply(reply, &errorText) == ReplyAccepted;
    return { true,
             filled("the driver %1 it (%2); %3",
                    accepted ? QStringLiteral("accepts") : QStringLiteral("refuses"), errorText,
                    host::verdictText(verdict)),
             causeCode(verdict) };
}

void printFrame(const QByteArray &bytes, const FrameText &text, const Opinion &opinion, bool json)
{
    QJsonArray fields;
    for (const FrameField &field : text.fields)
        fields.append(jsonOf({ { "bytes", bytesText(field.bytes) },
                               { "name", field.name },
                               { "meaning", field.meaning } }));
    print(json,
          { { "frame", bytesText(bytes) },
            { "length", QJsonValue::Undefined, QString::number(bytes.size()) },
            { "kind", text.kind },
            { "crc", text.crcIsRight },
            { "fields", fields, fieldLines(text).join(QLatin1Char('\n')) },
            { "driver", valueIf(opinion.asked, opinion.text),
              opinion.asked ? filled("\n %1", opinion.text) : QString() } },
          "{kind}, {length} bytes\n{fields}{driver}");
}

int runDecode(const Options &options)
{
    QString error;
    const auto bytes = parseBytes(options.words, &error);
    std::optional<QByteArray> request;
    if (bytes && !options.request.isEmpty())
        request = parseBytes({ options.request }, &error);
    if (!error.isEmpty())
        return complain({ ExitUsage, error });
    Failure failure;
    auto plugin = loadDriver(options.driver, &failure);
    if (!plugin)
        return complain(failure);
    host::LinkSettings settings;
    settings.blockSize = 123; // any request that fits a frame
    settings.retryLimit = 1;
    host::Link link(std::move(plugin), settings);

    const FrameText asked =
        request ? explainFrame(*request) : FrameText(); // names the values of the reply
    const FrameText text = explainFrame(*bytes, asked.firstRegister);
    Opinion opinion;
    if (request)
        opinion = aboutReply(link, *request, asked, *bytes);
    else if (isRequest(text))
        opinion = aboutRequest(link, *bytes, text);
    printFrame(*bytes, text, opinion, options.json);
    if (opinion.code != ExitDone)
        return opinion.code;
    return text.crcIsRight ? ExitDone : ExitDamagedReply;
}

} // namespace

void describeFramesDecode(Command &frames)
{
    Command command = frames.sub("decode", "explain a request or a reply");
    Options &options = command.action(runDecode);
    command.words("bytes", options.words, "the frame, two hexadecimal digits per byte", "");
    command.text("--request", options.request, "the request that it answers", "BYTES");
    command.flag("--json", options.json, "print one JSON object");
    addDriverOption(command, options.driver);
    command.example("dx4 frames decode 01 03 D0 00 00 04 7C C9", "a read request");
    command.example("dx4 frames decode 01 83 02 C0 F1", "an exception: the register is not there");
    command.example("dx4 frames decode 01 03 02 00 11 78 48 "
                    "--request \"01 03 20 00 00 01 8F CA\"",
                    "a reply with its request, and the driver's verdict on it");
}

} // namespace dx4::cli
