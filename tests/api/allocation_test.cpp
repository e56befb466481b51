// SPDX-License-Identifier: MIT
// What has been seen before costs no memory, and what is new costs the same however large the
// cache.
#include "cycle_fixture.h"

#include <cstdlib>

extern "C" void *__libc_malloc(std::size_t size); // NOLINT(bugprone-reserved-identifier)
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" void *__libc_realloc(void *block, std::size_t size);

namespace {

long allocations = 0;

} // namespace

// They take the place of the C library's for the whole program, the driver and Qt included. Lists
// of Qt 6 grow by the second alone.
extern "C" Q_DECL_EXPORT void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

extern "C" Q_DECL_EXPORT void *realloc(void *block, std::size_t size)
{
    ++allocations;
    return __libc_realloc(block, size);
}

namespace {

class Allocations : public CycleFixture {
protected:
    Allocations() { init("1#0#0#3#16"); }

    // Answers the next request with these bytes again and again; gives the allocations it took.
    long allocationsOfCycles(const std::vector<QByteArray> &replies, int cycles)
    {
        std::vector<QByteArray> received = replies;
        const long before = allocations;
        for (int i = 0; i < cycles; ++i) {
            dx4.getSendFrame(frame);
            dx4.dealRcvFrame(received[static_cast<std::size_t>(i) % received.size()], errorText);
        }
        return allocations - before;
    }

    static QByteArray replyOf(const std::string &hex)
    {
        const std::vector<unsigned char> bytes = withCrc(fromHex(hex));
        return { reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()) };
    }

    // Fills the cache up to this many registers.
    void fillCache(int registers)
    {
        std::vector<unsigned char> out(static_cast<std::size_t>(registers) * 2);
        dx4.getData(7, QStringLiteral("D"), 0, registers, out.data());
    }

    long allocationsOfNewRegisters(int count)
    {
        std::vector<unsigned char> out(static_cast<std::size_t>(count) * 2);
        const QString type = QStringLiteral("D");
        const long before = allocations;
        dx4.getData(1, type, 0, count, out.data());
        return allocations - before;
    }
};

long countedCalls = 0;

void countOnly(int, int, QString &, int)
{
    ++countedCalls;
}

} // namespace

TEST_F(Allocations, AnUnchangedReadAllocatesNothing)
{
    merge({ keyAddress(1, "D", 0, 3) });
    const std::vector<QByteArray> same = { replyOf("01 03 06 00 01 00 02 00 03") };
    allocationsOfCycles(same, 3);

    EXPECT_EQ(allocationsOfCycles(same, 100), 0);
}

TEST_F(Allocations, AReadWithReportedChangesAllocatesNothing)
{
    merge({ keyAddress(1, "D", 0, 3) });
    dx4.setAddrValueChangeCallBack(countOnly);
    const std::vector<QByteArray> changing = { replyOf("01 03 06 00 01 00 02 00 03"),
                                               replyOf("01 03 06 00 04 00 05 00 06") };
    allocationsOfCycles(changing, 4);
    countedCalls = 0;

    EXPECT_EQ(allocationsOfCycles(changing, 100), 0);
    EXPECT_EQ(countedCalls, 300);
}

TEST_F(Allocations, ReadingKnownRegistersAllocatesNothing)
{
    fillCache(100);
    unsigned char out[200] = {};
    const QString type = QStringLiteral("D");

    const long before = allocations;
    dx4.getData(7, type, 0, 100, out);
    dx4.getData(7, type, 42, 1, out);

    EXPECT_EQ(allocations - before, 0);
}

TEST_F(Allocations, AWriteFromQueueToEchoAllocatesNothing)
{
    unsigned char value[2] = { 1, 0 };
    const QString type = QStringLiteral("F");
    QByteArray answer = replyOf("01 06 F0 01 00 01");
    const auto write = [&] {
        dx4.setData(1, type, 1, 1, value, 0);
        dx4.getSendFrame(frame);
        dx4.dealRcvFrame(answer, errorText);
    };
    merge({ keyAddress(1, "D", 0, 1) });
    for (int i = 0; i < 3; ++i)
        write();

    const long before = allocations;
    write();

    EXPECT_EQ(allocations - before, 0);
}

TEST_F(Allocations, ANewRegisterCostsTheSameInALargeCache)
{
    fillCache(100);
    const long inSmallCache = allocationsOfNewRegisters(1000);
    init("1#0#0#3#16");
    fillCache(20000);
    const long inLargeCache = allocationsOfNewRegisters(1000);

    // One record each in a list of Qt 5, while one of Qt 6 has its records in one block; and now
    // and then a larger table or block.
    const long records = QT_VERSION_MAJOR == 5 ? 1000 : 0;
    EXPECT_GE(inSmallCache, records);
    EXPECT_LE(inSmallCache, records + 50);
    EXPECT_GE(inLargeCache, records);
    EXPECT_LE(inLargeCache, records + 50);
}
