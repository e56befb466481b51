// SPDX-License-Identifier: MIT
// A recording played through host and driver once more.
#include "host/recording/replay.h"

#include "host/base/length.h"
#include "register_tables.h"
#include "wire/function_code.h"
#include "wire/register_place.h"

#include <algorithm>
#include <optional>

namespace dx4::host {
namespace {

constexpr int requestBytes = 8;
constexpr int writeManyDataOffset = 7;

/// A request taken apart.
struct Request {
    int station = 0;
    int function = 0;
    QString regType;
    int address = 0;
    int count = 1;
    QVector<quint16> values; ///< of a write
};

int byteAt(const QByteArray &frame, int offset)
{
    return static_cast<unsigned char>(frame.at(offset));
}

int wordAt(const QByteArray &frame, int offset)
{
    return byteAt(frame, offset) * 256 + byteAt(frame, offset + 1);
}

/// Finds type and internal address of a Modbus register; false for one that no type has.
bool locate(int modbusAddress, Request &request)
{
    const auto place = placeOf(modbusAddress);
    if (!place)
        return false;
    request.regType = REG_LIST[place->type];
    request.address = place->address;
    return true;
}

std::optional<Request> parse(const QByteArray &frame)
{
    if (frame.size() < requestBytes)
        return std::nullopt;
    Request request;
    request.station = byteAt(frame, 0);
    request.function = byteAt(frame, 1);
    if (!locate(wordAt(frame, 2), request))
        return std::nullopt;
    switch (request.function) {
    case ReadHoldingRegisters:
        request.count = wordAt(frame, 4);
        return request;
    case WriteSingleRegister:
        request.values = { static_cast<quint16>(wordAt(frame, 4)) };
        return request;
    case WriteMultipleRegisters:
        request.count = wordAt(frame, 4);
        if (frame.size() != writeManyDataOffset + 2 * request.count + 2)
            return std::nullopt;
        for (int i = 0; i < request.count; ++i)
            request.values.append(static_cast<quint16>(wordAt(frame, writeManyDataOffset + 2 * i)));
        return request;
    default:
        return std::nullopt;
    }
}

bool names(const VARIABLE &variable, const Request &request)
{
    return variable.station == request.station && variable.regType == request.regType
        && variable.address == request.address && variable.count == request.count;
}

/// Whether the link reads these registers by itself: it is their turn, or their turn comes after
/// blocks that the recording leaves out. A polled block that was read out of turn is told from that
/// by what follows it, the block whose turn it was.
bool isCyclic(const Link &link, const ReplayLine &line, const Request &request)
{
    const QList<VARIABLE> &rotation = link.api().state->readList;
    if (rotation.isEmpty())
        return false;
    const auto following = parse(line.requestAfterNext());
    const bool outOfTurn = !names(rotation.constFirst(), request) && following
        && following->function == ReadHoldingRegisters && names(rotation.constFirst(), *following);
    return !outOfTurn && std::any_of(rotation.begin(), rotation.end(), [&](const VARIABLE &block) {
        return names(block, request);
    });
}

/// Makes the link send this request in its turn.
void bringAbout(Link &link, const ReplayLine &line, const Request &request)
{
    const bool inProgress = link.waitingWrites() > 0 || link.waitingConditionReads() > 0;
    if (inProgress)
        return;
    if (request.function != ReadHoldingRegisters)
        link.write(request.station, request.regType, request.address, request.values);
    else if (!isCyclic(link, line, request))
        link.addConditionRead(request.station, request.regType, request.address, request.count);
}

/// Lets only what the recording has onto the line. A guard would wait for the replies to all else,
/// and keep requests back that the recording answers.
class RecordedExchange : public Exchange {
public:
    RecordedExchange(ReplayLine &line, Exchange &exchange)
        : m_line(line)
        , m_exchange(exchange)
    {
    }

    Reply run(const FRAME_PRO &request) override
    {
        const auto *const bytes = reinterpret_cast<const char *>(request.frame);
        if (m_line.isAhead(QByteArray(bytes, request.sendLength)))
            return m_exchange.run(request);
        m_line.noteUnrecorded();
        return {};
    }
    const ExchangeReport &report() const override { return m_exchange.report(); }

private:
    ReplayLine &m_line;
    Exchange &m_exchange;
};

} // namespace

ReplayResult replay(Link &link, ReplayLine &line, Exchange &exchange)
{
    RecordedExchange recorded(line, exchange);
    Cycle cycle(link, recorded);
    ReplayResult result;
    // Longest way to a recorded request: every block failed with all its tries.
    const int patience = (lengthOf(link.api().state->readList) + 1) * link.settings().retryLimit;
    int waited = 0;
    while (!line.nextRequest().isEmpty() && waited <= patience) {
        const auto request = parse(line.nextRequest());
        if (!request)
            break;
        bringAbout(link, line, *request);
        const int playedBefore = line.played();
        const bool idle = cycle.step() == Cycle::Step::Idle;
        waited = line.played() > playedBefore ? 0 : waited + (idle ? patience + 1 : 1);
    }
    result.played = line.played();
    result.unrecorded = line.unrecorded();
    result.complete = line.nextRequest().isEmpty();
    result.stoppedAt = QString::fromLatin1(line.nextRequest().toHex(' ').toUpper());
    return result;
}

} // namespace dx4::host
