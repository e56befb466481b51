// SPDX-License-Identifier: MIT
// The queue of writes by itself: whose turn it is, what is replaced, which value waits.
#include "host/writes/write_queue.h"

#include <gtest/gtest.h>

using namespace dx4::host;

namespace {

WriteWish wish(int station, const char *regType, int address, const QVector<quint16> &values)
{
    WriteWish result;
    result.station = station;
    result.regType = QString::fromLatin1(regType);
    result.address = address;
    result.values = values;
    return result;
}

QueuedWrite queued(int id, const WriteWish &wish)
{
    QueuedWrite write;
    write.id = id;
    write.wish = wish;
    return write;
}

} // namespace

TEST(WriteQueueTest, TheNewestWriteOfARegisterHasItsWaitingValue)
{
    WriteQueue queue;
    queue.add(queued(1, wish(1, "F", 10, { 21, 22, 23 })));
    queue.add(queued(2, wish(1, "F", 11, { 24 })));
    queue.add(queued(3, wish(2, "F", 10, { 25 })));
    queue.add(queued(4, wish(1, "CW", 0, { 26 })));
    struct {
        int station;
        const char *regType;
        int address;
        std::optional<quint16> value;
    } const rows[] = {
        { 1, "F", 9, {} },  { 1, "F", 10, 21 }, { 1, "F", 11, 24 },  { 1, "F", 12, 23 },
        { 1, "F", 13, {} }, { 2, "F", 10, 25 }, { 2, "F", 11, {} },  { 1, "CW", 0, 26 },
        { 2, "CW", 0, {} }, { 1, "F", 0, {} },  { 1, "CW", 10, {} }, { 3, "F", 10, {} },
    };
    for (const auto &row : rows) {
        EXPECT_EQ(queue.waitingValue(row.station, QString::fromLatin1(row.regType), row.address),
                  row.value)
            << row.station << ' ' << row.regType << ' ' << row.address;
    }
}

TEST(WriteQueueTest, StationsTakeTurnsAndEachBeginsWithItsFirstWrite)
{
    WriteQueue queue;
    EXPECT_EQ(queue.next(), nullptr);
    queue.add(queued(1, wish(247, "CW", 0, { 1 })));
    queue.add(queued(2, wish(1, "CW", 0, { 1 })));
    queue.add(queued(3, wish(3, "CW", 0, { 1 })));
    queue.add(queued(4, wish(3, "FRE", 0, { 1 })));

    EXPECT_EQ(queue.next()->id, 2);
    queue.passTurn(1);
    EXPECT_EQ(queue.next()->id, 3);
    queue.passTurn(2);
    EXPECT_EQ(queue.next()->id, 3);
    queue.passTurn(3);
    EXPECT_EQ(queue.next()->id, 1);
    queue.passTurn(247);
    EXPECT_EQ(queue.next()->id, 2);
    queue.remove(1);
    queue.remove(2);
    queue.passTurn(3);
    EXPECT_EQ(queue.next()->id, 3) << "it is the only one";
}

TEST(WriteQueueTest, AWriteIsCountedForItsStation)
{
    WriteQueue queue;
    queue.add(queued(5, wish(1, "CW", 0, { 1 })));
    queue.add(queued(7, wish(2, "CW", 0, { 1 })));
    queue.add(queued(6, wish(1, "FRE", 0, { 1 })));

    EXPECT_EQ(queue.size(), 3);
    EXPECT_EQ(queue.sizeOf(1), 2);
    EXPECT_EQ(queue.sizeOf(2), 1);
    EXPECT_EQ(queue.sizeOf(3), 0);
    EXPECT_EQ(queue.ids(), (QVector<int> { 5, 6, 7 }));
    EXPECT_EQ(queue.find(4), nullptr);
    EXPECT_EQ(queue.find(6)->wish.regType, QStringLiteral("FRE"));
}

TEST(WriteQueueTest, AWriteReplacesTheSameRunRightBeforeItAndAStopEachOfThem)
{
    const WriteWish newer = wish(1, "CW", 0, { 9 });
    WriteQueue queue;
    queue.add(queued(1, wish(1, "CW", 0, { 1 })));
    queue.add(queued(2, wish(1, "FRE", 0, { 1 })));
    queue.add(queued(3, wish(1, "CW", 0, { 2 })));
    queue.add(queued(4, wish(2, "CW", 0, { 3 })));
    EXPECT_EQ(queue.replacedBy(newer, false), QVector<int> { 3 });
    EXPECT_EQ(queue.replacedBy(newer, true), (QVector<int> { 1, 3 }));
    EXPECT_EQ(queue.replacedBy(wish(1, "FRE", 0, { 2 }), false), QVector<int> {});

    queue.find(3)->handedOver = true;

    EXPECT_EQ(queue.replacedBy(newer, false), QVector<int> {});
    EXPECT_EQ(queue.replacedBy(newer, true), QVector<int> { 1 });
}

TEST(WriteQueueTest, ARunIsTheSameInAddressAndLength)
{
    WriteQueue queue;
    queue.add(queued(1, wish(1, "F", 2, { 1, 2 })));

    EXPECT_EQ(queue.replacedBy(wish(1, "F", 2, { 3, 4 }), false), QVector<int> { 1 });
    EXPECT_EQ(queue.replacedBy(wish(1, "F", 3, { 3, 4 }), false), QVector<int> {});
    EXPECT_EQ(queue.replacedBy(wish(1, "F", 2, { 3 }), false), QVector<int> {});
}
