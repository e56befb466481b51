// SPDX-License-Identifier: MIT
// A link that runs for long over a bad line: no value invented, no write lost, no memory gained.
//
// KORVANE_TRANSACTIONS sets the number of exchanges, KORVANE_SEED where they start.
#include "driver_fixture.h"
#include "faulty_line.h"

#include <cstdlib>
#include <malloc.h>

namespace {

constexpr int badPercent = 30;
constexpr std::size_t allowedGrowth = 64 * 1024; // bytes; queues of some requests come and go

long numberFrom(const char *variable, long otherwise)
{
    const char *text = std::getenv(variable);
    return text ? std::atol(text) : otherwise;
}

struct Counts {
    long right = 0; // accepted, and what the slave answered to this request
    long knownLimit =
        0; // accepted although foreign or late: right length and CRC is all that counts
    long refused = 0;
    long givenUp = 0;
    long writesQueued = 0;
    long writesConfirmed = 0;
    long writesFailed = 0;
};

class Soak : public DriverFixture {
protected:
    Soak()
    {
        init("1#0#0#3#16");
        dx4.setAddrValueChangeCallBack([](int, int, QString &, int) {});
        QList<KEY_ADDRESS> wanted { keyAddress(1, "D", 0, 32), keyAddress(2, "D", 4, 9),
                                    keyAddress(1, "F", 0, 12), keyAddress(1, "SW", 0, 1) };
        dx4.addrMerge(wanted);
    }

    // What a host does between two exchanges.
    void ask()
    {
        const int address = line.below(12);
        const int chance = line.below(20);
        if (chance < 4) {
            const int before = static_cast<int>(state.writeList.size());
            std::vector<int> values;
            for (int left = 1 + line.below(4); left > 0; --left)
                values.push_back(line.below(0x10000));
            set(1, "F", address, values);
            counts.writesQueued += state.writeList.size() - before;
        } else if (chance < 6) {
            dx4.addConditionRead(keyAddress(1 + line.below(2), "D", address, 1 + line.below(6)), 1);
        }
    }

    void exchange(int percent)
    {
        if (dx4.getSendFrame(frame) == 0)
            return;
        const int phase = state.phase;
        Exchange carried = line.carry(frame, percent);
        const int result = dx4.dealRcvFrame(carried.received, errorText);
        judge(carried, result, phase);
    }

    void judge(const Exchange &carried, int result, int phase)
    {
        const bool isRight = !carried.right.isEmpty() && carried.received == carried.right;
        ASSERT_EQ(result == 1, isRight || isKnownLimit(carried))
            << "result " << result << ", fault " << static_cast<int>(carried.fault);
        if (result == 1) {
            ++(isRight ? counts.right : counts.knownLimit);
            counts.writesConfirmed += phase == 2;
            if (phase != 2)
                checkValues(carried.received);
        } else {
            ++(result == 2 ? counts.givenUp : counts.refused);
            counts.writesFailed += phase == 2 && result == 2;
        }
    }

    // Another station's answer, an answer that comes late, and one chance in 65536 for junk.
    bool isKnownLimit(const Exchange &carried) const
    {
        return carried.received.size() == frame.replyLength && hasRightCrc(carried.received);
    }

    // The cache shows what the reply carried, or what was written and is not settled yet.
    void checkValues(const QByteArray &received)
    {
        for (int i = 0; i < frame.var.count; ++i) {
            const _DATA_ *area = areaOf(frame.var.address + i);
            ASSERT_NE(area, nullptr);
            ASSERT_EQ(area->value[1], static_cast<unsigned char>(received.at(3 + 2 * i)));
            ASSERT_EQ(area->value[0], static_cast<unsigned char>(received.at(4 + 2 * i)));
            ASSERT_EQ(area->flag0, 0);
        }
    }

    const _DATA_ *areaOf(int address) const
    {
        for (const _DATA_ &area : std::as_const(state.dataAreas)) {
            if (area.address == address && area.station == frame.var.station
                && area.regType == frame.var.regType)
                return &area;
        }
        return nullptr;
    }

    void play(long transactions)
    {
        for (long i = 0; i < transactions && !HasFatalFailure(); ++i) {
            line.moveOn();
            ask();
            exchange(badPercent);
        }
    }

    // Serves what still waits over a line without faults.
    void drain()
    {
        for (int i = 0; i < 5000 && !HasFatalFailure(); ++i)
            exchange(0);
    }

    const unsigned seed = static_cast<unsigned>(numberFrom("KORVANE_SEED", 20261));
    FaultyLine line { seed };
    Counts counts;
};

} // namespace

TEST_F(Soak, ABadLineInventsNoValueLosesNoWriteAndGainsNoMemory)
{
    const long transactions = numberFrom("KORVANE_TRANSACTIONS", 100000);
    SCOPED_TRACE("KORVANE_SEED=" + std::to_string(seed));
    play(transactions / 10);
    drain();
    const std::size_t usedWhenWarm = mallinfo2().uordblks;

    play(transactions - transactions / 10);
    drain();

    const std::size_t used = mallinfo2().uordblks;
    EXPECT_LT(used, usedWhenWarm + allowedGrowth);
    EXPECT_EQ(counts.writesQueued, counts.writesConfirmed + counts.writesFailed);
    EXPECT_TRUE(state.writeList.isEmpty());
    for (const _DATA_ &area : std::as_const(state.dataAreas))
        EXPECT_EQ(area.writePending, 0) << area.address;
    EXPECT_GT(counts.right, transactions / 2);
    EXPECT_GT(counts.givenUp, 0);
    std::printf("right %ld, known limit %ld, refused %ld, given up %ld, writes %ld = %ld confirmed "
                "+ %ld failed, memory %ld bytes when warm, %ld at the end\n",
                counts.right, counts.knownLimit, counts.refused, counts.givenUp,
                counts.writesQueued, counts.writesConfirmed, counts.writesFailed,
                static_cast<long>(usedWhenWarm), static_cast<long>(used));
}
