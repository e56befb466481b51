// SPDX-License-Identifier: MIT
// A write of one register from the host's call to its echo.
#include "driver_link.h"
#include "limit.h"
#include "samples.h"

#include <array>

namespace bench {
namespace {

constexpr int iterations = 40000;
constexpr int address = 7;
const Poll smallCache = { 1000, 16, 2, false };

// Every write changes the value, so each is reported. The echo of each is taken from its frame.
template <typename Queue, typename Send, typename Take>
void writeInTurn(benchmark::State &state, Queue queue, Send send, Take take)
{
    std::array<std::array<unsigned char, 2>, 2> values = { { { 1, 2 }, { 3, 4 } } };
    std::array<QByteArray, 2> echoes;
    FRAME_PRO frame;
    for (std::size_t i = 0; i < values.size(); ++i) {
        queue(values[i].data());
        send(frame);
        const auto *bytes = reinterpret_cast<const char *>(frame.frame);
        echoes[i] = withCrc(QByteArray(bytes, 6));
        take(echoes[i]);
    }
    reportedChanges = 0;
    std::size_t turn = 0;
    for ([[maybe_unused]] auto step : state) {
        queue(values[turn].data());
        send(frame);
        take(echoes[turn]);
        turn = 1 - turn;
    }
    if (reportedChanges != static_cast<long>(state.iterations()))
        endWith("a measured way did not report each write once");
}

void writeByDriver(benchmark::State &state)
{
    startPolling(smallCache);
    LoadedDriver &driver = loadedDriver();
    driver.state->readList.clear();
    QString line;
    writeInTurn(
        state,
        [&](unsigned char *data) { driver.setData(pollStation, pollType, address, 1, data, 0); },
        [&](FRAME_PRO &frame) {
            // After five writes in a row one call gives nothing, so that reads get their turn.
            if (driver.getSendFrame(frame) == dx4::NothingToSend)
                driver.getSendFrame(frame);
        },
        [&](QByteArray &echo) { driver.dealRcvFrame(echo, line); });
    if (!driver.state->writeList.isEmpty())
        endWith("the driver left a write behind");
}

void writeByLimit(benchmark::State &state)
{
    Limit limit;
    limit.start(defaultBlock, countChange);
    std::vector<unsigned char> all(2 * 1000);
    limit.getData(pollStation, pollType, 0, 1000, all.data());
    QList<KEY_ADDRESS> wanted = smallCache.wanted();
    limit.merge(wanted);
    writeInTurn(
        state, [&](unsigned char *data) { limit.write(pollStation, pollType, address, data); },
        [&](FRAME_PRO &frame) { limit.sendFrame(frame); },
        [&](QByteArray &echo) { limit.takeReply(echo); });
}

} // namespace

void addWriteBenchmarks()
{
    measure("write/driver", iterations, writeByDriver);
    measure("write/limit", iterations, writeByLimit);
}

} // namespace bench
