// SPDX-License-Identifier: MIT
// A read from its frame to its stored values.
#include "alloc_count.h"
#include "driver_link.h"
#include "limit.h"
#include "memory_line.h"
#include "modbus_peer.h"
#include "samples.h"

#include <modbus.h>

namespace bench {
namespace {

// Hands out the replies in turn.
class Replies {
public:
    explicit Replies(const Poll &poll)
        : m_list(poll.replies())
    {
    }

    QByteArray &next()
    {
        QByteArray &reply = m_list[m_next];
        if (++m_next == m_list.size())
            m_next = 0;
        return reply;
    }

    std::size_t size() const { return m_list.size(); }

private:
    std::vector<QByteArray> m_list;
    std::size_t m_next = 0;
};

// Runs `round` for every reply before it is measured, so that all values are known, and looks at
// the number of reports afterwards: a way that stores nothing must not win.
template <typename Round> void runRounds(benchmark::State &state, const Poll &poll, Round round)
{
    Replies replies(poll);
    for (std::size_t i = 0; i < replies.size(); ++i)
        round(replies.next());
    reportedChanges = 0;
    for ([[maybe_unused]] auto step : state)
        round(replies.next());
    const long expected = poll.changes ? static_cast<long>(state.iterations()) * poll.perBlock : 0;
    if (reportedChanges != expected)
        endWith("a measured way did not report each change once");
}

void runDriver(benchmark::State &state, const Poll &poll)
{
    startPolling(poll);
    const LoadedDriver &driver = loadedDriver();
    FRAME_PRO frame;
    QString line;
    runRounds(state, poll, [&](QByteArray &reply) {
        driver.getSendFrame(frame);
        driver.dealRcvFrame(reply, line);
    });
}

void startLimit(Limit &limit, const Poll &poll)
{
    limit.start(poll.perBlock, countChange);
    unsigned char value[2];
    for (const NamedRegister &named : poll.named())
        limit.getData(named.station, pollType, named.address, 1, value);
    QList<KEY_ADDRESS> wanted = poll.wanted();
    limit.merge(wanted);
}

void runLimit(benchmark::State &state, const Poll &poll)
{
    Limit limit;
    startLimit(limit, poll);
    FRAME_PRO frame;
    runRounds(state, poll, [&](QByteArray &reply) {
        limit.sendFrame(frame);
        limit.takeReply(reply);
    });
}

void runModbus(benchmark::State &state, const Poll &poll)
{
    const ModbusClient client = memoryClient();
    uint16_t values[MODBUS_MAX_READ_REGISTERS];
    Replies replies(poll);
    int block = 0;
    for ([[maybe_unused]] auto step : state) {
        setMemoryReply(replies.next());
        const int address = poll.address(block) & 0xFFFF;
        if (modbus_read_registers(client.get(), address, poll.perBlock, values) != poll.perBlock)
            endWith("libmodbus refused a reply");
        benchmark::DoNotOptimize(values);
        block = block + 1 == poll.blocks ? 0 : block + 1;
    }
}

void runMap(benchmark::State &state, const Poll &poll)
{
    const ModbusClient client = memoryClient();
    RegisterMap map;
    map.fill(poll, countChange);
    uint16_t values[MODBUS_MAX_READ_REGISTERS];
    int block = 0;
    runRounds(state, poll, [&](QByteArray &reply) {
        setMemoryReply(reply);
        const int address = poll.address(block);
        modbus_read_registers(client.get(), address & 0xFFFF, poll.perBlock, values);
        map.store(pollStation, pollType, address, values, poll.perBlock);
        block = block + 1 == poll.blocks ? 0 : block + 1;
    });
}

void addPeers(const std::string &name, int iterations, const Poll &poll)
{
    const auto with = [&](void (*run)(benchmark::State &, const Poll &)) {
        return [run, poll](benchmark::State &state) { run(state, poll); };
    };
    measure(name + "/driver", iterations, with(runDriver));
    measure(name + "/limit", iterations, with(runLimit));
    measure(name + "/libmodbus", iterations, with(runModbus));
    measure(name + "/map", iterations, with(runMap));
}

} // namespace

void addCycleBenchmarks()
{
    for (const int perBlock : { 16, 120 }) {
        const std::string registers = std::to_string(perBlock);
        const int iterations = perBlock == 16 ? 100000 : 40000;
        for (const int cache : { 2 * perBlock, 1000, 10000, 100000 }) {
            addPeers("unchanged/" + registers + "/" + std::to_string(cache), iterations,
                     pollTwoBlocks(cache, perBlock, false));
        }
        addPeers("through/" + registers + "/100000", iterations, pollThrough(100000, perBlock));
        addPeers("changes/" + registers + "/1000", iterations / 2,
                 pollTwoBlocks(1000, perBlock, true));
        for (const Order order : { Order::Descending, Order::Shuffled, Order::Interleaved }) {
            Poll poll = pollTwoBlocks(1000, perBlock, false);
            poll.order = order;
            addPeers("unchanged/" + registers + "/1000/" + orderName(order), iterations, poll);
        }
    }
}

void countCycleAllocations(Samples &samples)
{
    constexpr int rounds = 1000;
    const Poll poll = pollTwoBlocks(1000, 16, false);
    startPolling(poll);
    Replies replies(poll);
    FRAME_PRO frame;
    QString line;
    std::size_t before = 0;
    for (int i = -10; i < rounds; ++i) {
        if (i == 0)
            before = allocations();
        loadedDriver().getSendFrame(frame);
        loadedDriver().dealRcvFrame(replies.next(), line);
    }
    samples["allocations/read"] = { static_cast<double>(allocations() - before) / rounds };
}

} // namespace bench
