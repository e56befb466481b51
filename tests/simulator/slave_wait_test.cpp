// SPDX-License-Identifier: MIT
// A station waits for nothing: what libmodbus asks the system to wait is counted, and not waited.
#include "simulator/inverter.h"
#include "simulator/slave.h"

#include <gtest/gtest.h>

#include <sys/select.h>

#include <chrono>
#include <ctime>

using namespace dx4::sim;

namespace {

Micros asked { 0 };

} // namespace

// These two stand in for those of the system in this whole program, also where libmodbus calls
// them.
extern "C" [[gnu::visibility("default")]] int nanosleep(const timespec *wanted, timespec *)
{
    asked += std::chrono::seconds(wanted->tv_sec) + Micros(wanted->tv_nsec / 1000);
    return 0;
}

extern "C" [[gnu::visibility("default")]] int select(int count, fd_set *reads, fd_set *writes,
                                                     fd_set *others, timeval *limit)
{
    if (limit)
        asked += std::chrono::seconds(limit->tv_sec) + Micros(limit->tv_usec);
    const timespec none {};
    return pselect(count, reads, writes, others, &none, nullptr);
}

TEST(SlaveWaits, AreMicrosecondsForAFrameThatIsCutAndForARefusal)
{
    Inverter inverter;
    Slave slave(1, inverter);
    asked = Micros(0);

    slave.answer(fromHex("01 03 F0 00 00"));
    const Micros forTheRest = asked;
    const Bytes refused = slave.answer(withCrc(fromHex("01 03 F0 00 00 00")));
    const Micros inAll = asked;

    EXPECT_EQ(toHex(refused), toHex(withCrc(fromHex("01 83 03"))));
    EXPECT_GT(forTheRest, Micros(0)) << "the count sees what libmodbus asks";
    EXPECT_LT(inAll, Micros(20));
}
