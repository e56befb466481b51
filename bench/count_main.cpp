// SPDX-License-Identifier: MIT
// One measured way, so many times: for a tool that counts instructions.
//
// Usage: korvane_count driver|limit unchanged|changes|getData REGISTERS ORDER TIMES
#include "driver_link.h"
#include "limit.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr int cacheSize = 1000;

struct Task {
    bench::Poll poll;
    bool isGetData;
    int times;
};

bench::Order orderOf(const char *name)
{
    using bench::Order;
    for (const Order order :
         { Order::Ascending, Order::Descending, Order::Shuffled, Order::Interleaved }) {
        if (std::strcmp(name, bench::orderName(order)) == 0)
            return order;
    }
    bench::endWith("no such order");
}

/// @param round  a read with its reply
/// @param getData  of one block
template <typename Round, typename GetData> void repeat(const Task &task, Round round, GetData get)
{
    std::vector<QByteArray> replies = task.poll.replies();
    unsigned char values[2 * 128];
    for (int i = 0; i < task.times; ++i) {
        if (task.isGetData)
            get(task.poll.address(i % task.poll.blocks), task.poll.perBlock, values);
        else
            round(replies[static_cast<std::size_t>(i) % replies.size()]);
    }
}

void runDriver(const Task &task)
{
    bench::startPolling(task.poll);
    const LoadedDriver &driver = bench::loadedDriver();
    FRAME_PRO frame;
    QString line;
    repeat(
        task,
        [&](QByteArray &reply) {
            driver.getSendFrame(frame);
            driver.dealRcvFrame(reply, line);
        },
        [&](int address, int count, unsigned char *values) {
            driver.getData(bench::pollStation, bench::pollType, address, count, values);
        });
}

void runLimit(const Task &task)
{
    bench::Limit limit;
    limit.start(task.poll.perBlock, bench::countChange);
    unsigned char value[2];
    for (const bench::NamedRegister &named : task.poll.named())
        limit.getData(named.station, bench::pollType, named.address, 1, value);
    QList<KEY_ADDRESS> wanted = task.poll.wanted();
    limit.merge(wanted);
    FRAME_PRO frame;
    repeat(
        task,
        [&](QByteArray &reply) {
            limit.sendFrame(frame);
            limit.takeReply(reply);
        },
        [&](int address, int count, unsigned char *values) {
            limit.getData(bench::pollStation, bench::pollType, address, count, values);
        });
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 6)
        bench::endWith("driver|limit unchanged|changes|getData REGISTERS ORDER TIMES");
    const bool isGetData = std::strcmp(argv[2], "getData") == 0;
    const bool changes = std::strcmp(argv[2], "changes") == 0;
    bench::Poll poll = bench::pollTwoBlocks(cacheSize, std::atoi(argv[3]), changes);
    poll.order = orderOf(argv[4]);
    const Task task { poll, isGetData, std::atoi(argv[5]) };
    if (std::strcmp(argv[1], "driver") == 0)
        runDriver(task);
    else
        runLimit(task);
    return 0;
}
