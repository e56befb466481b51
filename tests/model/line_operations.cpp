// SPDX-License-Identifier: MIT
// The interpreter's operations on requests, replies and values.
#include "operations.h"

#include "arguments.h"
#include "replies.h"

#include <cstring>

namespace model {

namespace {

constexpr int untouched = -77;

std::string described(int station, const QString &type, int address, int count)
{
    return std::to_string(station) + ' ' + describe(type) + ' ' + std::to_string(address)
        + " count " + std::to_string(count);
}

} // namespace

void Interpreter::sendFrameOnce(const char *description)
{
    both(description, [](auto &side, Outcome &outcome) {
        FRAME_PRO out;
        out.sendLength = untouched;
        const int result = side.dx4.getSendFrame(out);
        outcome.add("result", result);
        if (result == 1)
            outcome.add("frame", out);
        else
            outcome.add("frame's length", out.sendLength);
    });
}

void Interpreter::getSendFrame()
{
    sendFrameOnce("getSendFrame");
}

void Interpreter::handIn(const QByteArray &bytes)
{
    drawCallbackPlan();
    both(
        [&] {
            return "reply " + bytes.left(64).toHex().toStdString() + " of "
                + std::to_string(bytes.size());
        },
        [&](auto &side, Outcome &outcome) {
            QByteArray received = bytes;
            QString errorText = QStringLiteral("before");
            outcome.add("result", side.dx4.dealRcvFrame(received, errorText));
            outcome.add("error text", errorText);
            outcome.add("reply", received);
        });
}

void Interpreter::reply()
{
    if (m_pair.model.state.sendFrames.isEmpty() && !m_source.onceIn(16))
        sendFrameOnce("getSendFrame");
    if (!m_report.empty())
        return;
    const bool pending = !m_pair.model.state.sendFrames.isEmpty();
    const FRAME_PRO request = pending ? m_pair.model.state.sendFrames.constFirst() : FRAME_PRO();
    handIn(anyReply(m_source, request));
}

void Interpreter::cycles()
{
    for (int left = 1 + m_source.below(8); left > 0 && m_report.empty(); --left) {
        sendFrameOnce("getSendFrame");
        if (!m_report.empty() || m_pair.model.state.sendFrames.isEmpty())
            return;
        handIn(rightReply(m_source, m_pair.model.state.sendFrames.constFirst()));
    }
}

void Interpreter::addConditionRead()
{
    KEY_ADDRESS key = drawKeyAddress(m_source);
    const VARIABLE last = m_pair.model.state.conditionVar;
    if (m_source.onceIn(4)) { // the same once more
        key.station = last.station;
        key.regType = last.regType;
        key.address = last.address;
        key.count = last.count;
    }
    const int kind = m_source.byte();
    both([&] { return "addConditionRead " + describe(key) + " kind " + std::to_string(kind); },
         [&](auto &side, Outcome &outcome) {
             outcome.add("result", side.dx4.addConditionRead(key, kind));
         });
}

void Interpreter::getData()
{
    const int station = drawStation(m_source);
    const QString type = drawType(m_source);
    const int address = drawAddress(m_source);
    const int count = drawCount(m_source);
    const bool absent = m_source.onceIn(32);
    both(
        [&] {
            return "getData " + described(station, type, address, count)
                + (absent ? " into null" : "");
        },
        [&](auto &side, Outcome &outcome) {
            QByteArray out(2 * std::max(count, 0) + 4, '\xEE');
            auto *bytes = reinterpret_cast<unsigned char *>(out.data());
            outcome.add("result",
                        side.dx4.getData(station, type, address, count, absent ? nullptr : bytes));
            outcome.add("values", out);
        });
}

void Interpreter::setData()
{
    int station = drawStation(m_source);
    QString type = drawType(m_source);
    int address = drawAddress(m_source);
    int count = drawCount(m_source);
    const QList<VARIABLE> &waiting = m_pair.model.state.writeList;
    if (!waiting.isEmpty() && m_source.onceIn(4)) { // once more what waits already
        const VARIABLE again = waiting.at(m_source.below(static_cast<int>(waiting.size())));
        station = again.station;
        type = again.regType;
        address = again.address;
        count = std::min(again.count, 600);
    }
    const QByteArray values = drawValues(m_source, std::max(count, 0));
    const bool absent = m_source.onceIn(48);
    const int kind = m_source.byte();
    drawCallbackPlan();
    both(
        [&] {
            return "setData " + described(station, type, address, count) + " kind "
                + std::to_string(kind) + ' ' + values.left(64).toHex().toStdString()
                + (absent ? " from null" : "");
        },
        [&](auto &side, Outcome &outcome) {
            // Exactly as long as the driver may read.
            std::vector<unsigned char> data(values.begin(), values.end());
            data.shrink_to_fit();
            outcome.add("result",
                        side.dx4.setData(station, type, address, count,
                                         absent ? nullptr : data.data(), kind));
        });
}

// Brings a queue to its bound quickly.
void Interpreter::fillQueue()
{
    const bool writes = m_source.onceIn(2);
    const int first = drawAddress(m_source);
    const int requests = m_source.between(500, 520);
    m_pair.callbackPlan = 0;
    both(
        [&] {
            return (writes ? "fill the write queue from " : "fill the condition queue from ")
                + std::to_string(first) + " with " + std::to_string(requests);
        },
        [&](auto &side, Outcome &) {
            unsigned char data[2] = { 1, 2 };
            KEY_ADDRESS key;
            key.station = 1;
            key.regType = QStringLiteral("F");
            key.count = 1;
            for (int i = 0; i < requests; ++i) {
                key.address = (first & 0xFFFF) + i;
                if (writes)
                    side.dx4.setData(1, key.regType, key.address, 1, data, i);
                else
                    side.dx4.addConditionRead(key, i);
            }
        });
}

} // namespace model
