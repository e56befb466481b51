// SPDX-License-Identifier: MIT
// Alarms come, go and are acknowledged.
#include "panel/alarms/alarm_book.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace dx4::panel;

namespace {

AlarmKey fault(int station, int code = 2)
{
    return { AlarmKind::Fault, station, code, {} };
}

std::vector<int> stations(const AlarmBook &book)
{
    std::vector<int> found;
    const QVector<Alarm> alarms = book.list();
    for (const Alarm &alarm : alarms)
        found.push_back(alarm.key.station);
    return found;
}

} // namespace

TEST(AlarmBook, AnAlarmIsActiveUntilItGoesAndStaysUntilItIsAcknowledged)
{
    AlarmBook book;

    book.raise(fault(3), {}, 1000);
    EXPECT_EQ(book.find(fault(3))->state, AlarmState::Active);
    EXPECT_EQ(book.find(fault(3))->since, 1000);

    book.clear(fault(3), 5000);
    EXPECT_EQ(book.find(fault(3))->state, AlarmState::Returned);
    EXPECT_EQ(book.find(fault(3))->returned, 5000);

    EXPECT_TRUE(book.acknowledge(fault(3)));
    EXPECT_EQ(book.find(fault(3)), nullptr);
}

TEST(AlarmBook, AnAcknowledgedAlarmStaysWhileItIsActive)
{
    AlarmBook book;
    book.raise(fault(3), {}, 1000);

    EXPECT_TRUE(book.acknowledge(fault(3)));
    EXPECT_EQ(book.find(fault(3))->state, AlarmState::Acknowledged);
    EXPECT_EQ(book.unacknowledged(), 0);
    EXPECT_EQ(book.active(), 1);

    book.clear(fault(3), 2000);
    EXPECT_EQ(book.find(fault(3)), nullptr);
}

TEST(AlarmBook, NothingIsAcknowledgedTwice)
{
    AlarmBook book;
    book.raise(fault(3), {}, 1000);
    book.acknowledge(fault(3));

    EXPECT_FALSE(book.acknowledge(fault(3)));
    EXPECT_FALSE(book.acknowledge(fault(4)));
}

TEST(AlarmBook, OneThatComesAgainBeforeItIsAcknowledgedIsTheSame)
{
    AlarmBook book;
    book.raise(fault(3), {}, 1000);
    book.clear(fault(3), 2000);

    book.raise(fault(3), {}, 3000);

    const Alarm *alarm = book.find(fault(3));
    EXPECT_EQ(alarm->state, AlarmState::Active);
    EXPECT_EQ(alarm->since, 1000);
    EXPECT_EQ(alarm->newest, 3000);
    EXPECT_EQ(alarm->returned, 0);
    EXPECT_EQ(alarm->count, 2);
}

TEST(AlarmBook, TheSameWordSaidTwiceChangesNothing)
{
    AlarmBook book;
    book.raise(fault(3), QStringLiteral("hot"), 1000);
    book.acknowledge(fault(3));
    const quint64 version = book.version();

    book.raise(fault(3), QStringLiteral("hot"), 2000);
    book.clear(fault(4), 2000);

    EXPECT_EQ(book.version(), version);
    EXPECT_EQ(book.find(fault(3))->state, AlarmState::Acknowledged);
}

TEST(AlarmBook, WhatDoesNotLastIsOverAtOnceAndWantsToBeAcknowledged)
{
    AlarmBook book;
    const AlarmKey key { AlarmKind::Message, 0, 0, QStringLiteral("given up") };

    book.note(key, QStringLiteral("given up"), 1000);

    EXPECT_EQ(book.find(key)->state, AlarmState::Returned);
    EXPECT_TRUE(book.acknowledge(key));
    EXPECT_EQ(book.find(key), nullptr);
}

TEST(AlarmBook, WhatIsActiveAndUnacknowledgedComesFirstAndOfEachTheOldest)
{
    AlarmBook book;
    book.raise(fault(1), {}, 1000);
    book.raise(fault(2), {}, 4000);
    book.raise(fault(3), {}, 2000);
    book.raise(fault(4), {}, 3000);

    book.acknowledge(fault(1));
    book.clear(fault(4), 5000);

    EXPECT_EQ(stations(book), (std::vector<int> { 3, 2, 4, 1 }));
    EXPECT_EQ(book.oldest()->key, fault(3));
}

TEST(AlarmBook, WhereAllIsAcknowledgedThereIsNoOldest)
{
    AlarmBook book;
    EXPECT_EQ(book.oldest(), nullptr);

    book.raise(fault(1), {}, 1000);
    book.acknowledge(fault(1));

    EXPECT_EQ(book.oldest(), nullptr);
}

TEST(AlarmBook, AnAlarmThatReturnedIsTheOldestOnlyWhereNoneIsActive)
{
    AlarmBook book;
    book.raise(fault(1), {}, 1000);
    book.clear(fault(1), 2000);
    book.raise(fault(2), {}, 3000);
    EXPECT_EQ(book.oldest()->key, fault(2));

    book.acknowledge(fault(2));

    EXPECT_EQ(book.oldest()->key, fault(1));
}

TEST(AlarmBook, IsBoundedAndWhatReturnedGoesFirst)
{
    AlarmBook book;
    book.raise(fault(1, 1), {}, 1);
    for (int code = 2; code <= 501; ++code) {
        book.raise(fault(1, code), {}, code);
        book.clear(fault(1, code), code);
    }

    EXPECT_EQ(book.list().size(), 500);
    EXPECT_EQ(book.dropped(), 1);
    EXPECT_NE(book.find(fault(1, 1)), nullptr);
    EXPECT_EQ(book.find(fault(1, 2)), nullptr);
    EXPECT_NE(book.find(fault(1, 501)), nullptr);
}

TEST(AlarmBook, WhatWasAcknowledgedBeforeStaysSoWhileItIsActive)
{
    AlarmBook before;
    before.raise(fault(1), {}, 1000);
    before.acknowledge(fault(1));
    before.raise(fault(2), {}, 1500);
    AlarmBook book;
    book.raise(fault(1), {}, 9000);

    book.restore(before);

    EXPECT_EQ(book.find(fault(1))->state, AlarmState::Acknowledged);
    EXPECT_EQ(book.find(fault(1))->since, 1000);
    EXPECT_EQ(book.find(fault(2))->state, AlarmState::Active);
}

TEST(AlarmBook, WhatWentBeforeAndCameSinceHasComeTwice)
{
    AlarmBook before;
    before.raise(fault(1), {}, 1000);
    before.clear(fault(1), 2000);
    AlarmBook book;
    book.raise(fault(1), {}, 9000);

    book.restore(before);

    EXPECT_EQ(book.find(fault(1))->state, AlarmState::Active);
    EXPECT_EQ(book.find(fault(1))->since, 1000);
    EXPECT_EQ(book.find(fault(1))->newest, 9000);
    EXPECT_EQ(book.find(fault(1))->count, 2);
}
