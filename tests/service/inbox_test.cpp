// SPDX-License-Identifier: MIT
// What other threads want of the line's, in its order and with its exceptions.
#include "host/service/inbox.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace dx4::host;
using std::chrono::seconds;
using Ids = std::vector<int>;
using Taken = Inbox::Taken;

namespace {

SubmitWrite write(int id)
{
    return { id, {} };
}

ReadOnce read(int id)
{
    ReadOnce command;
    command.id = id;
    return command;
}

StopDrives stop(int id, int budgetInSeconds = 0)
{
    return { id, seconds(budgetInSeconds) };
}

/// One word for each command that is left, in their order.
std::string rest(Inbox &inbox)
{
    std::string words;
    while (const auto command = inbox.take()) {
        if (const auto *asWrite = std::get_if<SubmitWrite>(&*command))
            words += " write" + std::to_string(asWrite->id);
        else if (const auto *asRead = std::get_if<ReadOnce>(&*command))
            words += " read" + std::to_string(asRead->id);
        else if (const auto *asStop = std::get_if<StopDrives>(&*command))
            words += " stop" + std::to_string(asStop->id);
        else
            words += " cancel";
    }
    return words;
}

} // namespace

TEST(InboxTest, IsHurriedByAStopWhateverWasTakenBefore)
{
    Inbox inbox(blockingWaits());
    inbox.put(read(1));
    inbox.put(write(2));
    inbox.take();
    inbox.take();
    const bool before = inbox.isHurried();

    inbox.put(stop(3));

    EXPECT_FALSE(before);
    EXPECT_TRUE(inbox.isHurried());
}

TEST(InboxTest, CommandsAreTakenInTheirOrder)
{
    Inbox inbox(blockingWaits());
    EXPECT_TRUE(inbox.isEmpty());
    inbox.put(write(inbox.nextId()));
    inbox.put(read(inbox.nextId()));
    inbox.put(write(inbox.nextId()));
    EXPECT_FALSE(inbox.isEmpty());

    EXPECT_EQ(rest(inbox), " write1 read2 write3");
    EXPECT_TRUE(inbox.isEmpty());
    EXPECT_EQ(inbox.take(), std::nullopt);
}

TEST(InboxTest, ACommandEndsTheWait)
{
    Inbox inbox(blockingWaits());
    inbox.put(write(1));

    inbox.wait(std::chrono::hours(1));

    EXPECT_FALSE(inbox.isEmpty());
}

TEST(InboxTest, AClosedOneTakesNothingMoreAndGivesWhatItHas)
{
    Inbox inbox(blockingWaits());
    inbox.put(write(1));
    EXPECT_FALSE(inbox.isClosed());
    EXPECT_FALSE(inbox.isHurried());
    inbox.wait(std::chrono::hours(1));

    inbox.close();
    inbox.wait(std::chrono::hours(1));

    EXPECT_TRUE(inbox.isClosed());
    EXPECT_TRUE(inbox.isHurried());
    EXPECT_EQ(inbox.put(write(2)), Taken::Closed);
    EXPECT_EQ(rest(inbox), " write1");
}

TEST(InboxTest, WritesAreNotTakenUntilTheLastStopHasEnded)
{
    Inbox inbox(blockingWaits());
    EXPECT_EQ(inbox.put(write(1)), Taken::Yes);
    EXPECT_EQ(inbox.put(stop(2)), Taken::Yes);
    EXPECT_EQ(inbox.put(stop(3)), Taken::Yes);

    EXPECT_EQ(inbox.put(write(4)), Taken::Stopping);
    EXPECT_EQ(inbox.put(read(5)), Taken::Yes);
    EXPECT_EQ(rest(inbox), " write1 stop2 stop3 read5");
    EXPECT_EQ(inbox.put(write(6)), Taken::Stopping);
    inbox.endStops(1);
    EXPECT_EQ(inbox.put(write(7)), Taken::Stopping);
    inbox.endStops(1);

    EXPECT_EQ(inbox.put(write(8)), Taken::Yes);
}

TEST(InboxTest, HurriesWhileAStopWaitsToBeTaken)
{
    Inbox inbox(blockingWaits());
    Ids stops;
    EXPECT_FALSE(inbox.isHurried());
    inbox.put(stop(1));
    EXPECT_TRUE(inbox.isHurried());
    inbox.take();
    EXPECT_FALSE(inbox.isHurried());

    inbox.put(stop(2));
    inbox.takeStops(&stops);
    EXPECT_FALSE(inbox.isHurried());

    inbox.put(stop(3));
    inbox.put(CancelStop {});
    inbox.takeCancellation(&stops);
    EXPECT_FALSE(inbox.isHurried());
    EXPECT_EQ(stops, (Ids { 2, 3 }));
}

TEST(InboxTest, ACancellationIsForTheStopsInFrontOfTheLastOne)
{
    Inbox inbox(blockingWaits());
    Ids stops = { 9 };
    inbox.put(stop(1));
    inbox.put(read(2));
    inbox.put(CancelStop {});
    inbox.put(stop(3));
    inbox.put(CancelStop {});
    inbox.put(read(4));
    inbox.put(stop(5));

    const bool isCancelled = inbox.takeCancellation(&stops);

    EXPECT_TRUE(isCancelled);
    EXPECT_EQ(stops, (Ids { 9, 1, 3 }));
    EXPECT_TRUE(inbox.isHurried());
    EXPECT_EQ(rest(inbox), " read2 read4 stop5");
}

TEST(InboxTest, WithoutACancellationEveryStopStays)
{
    Inbox inbox(blockingWaits());
    Ids stops;
    inbox.put(read(1));
    inbox.put(stop(2));

    EXPECT_FALSE(inbox.takeCancellation(&stops));

    EXPECT_EQ(stops, Ids {});
    EXPECT_TRUE(inbox.isHurried());
    EXPECT_EQ(rest(inbox), " read1 stop2");
}

TEST(InboxTest, StopsInFrontOfACancellationAreOneWithTheLongestBudget)
{
    Inbox inbox(blockingWaits());
    Ids stops = { 9 };
    inbox.put(read(1));
    inbox.put(stop(2, 1));
    inbox.put(read(3));
    inbox.put(stop(4, 3));
    inbox.put(stop(5, 2));
    inbox.put(CancelStop {});
    inbox.put(stop(6, 8));

    const Duration longest = inbox.takeStops(&stops);

    EXPECT_EQ(longest, seconds(3));
    EXPECT_EQ(stops, (Ids { 9, 2, 4, 5 }));
    EXPECT_TRUE(inbox.isHurried());
    EXPECT_EQ(rest(inbox), " read1 read3 cancel stop6");
}

TEST(InboxTest, WithoutAStopThereIsNoBudget)
{
    Inbox inbox(blockingWaits());
    Ids stops;

    EXPECT_EQ(inbox.takeStops(&stops), Duration(0));
}

TEST(InboxTest, AJobIsCancelledFromWhenItIsPutInToItsEnd)
{
    const Command jobs[] = { read(7), BackUp { 7, {} }, Restore { 7, 1, {} } };
    for (const Command &job : jobs) {
        SCOPED_TRACE(job.index());
        Inbox inbox(blockingWaits());
        inbox.cancelJob(7);
        inbox.put(job);
        EXPECT_FALSE(inbox.isCancelled(7)) << "was asked for before there was such a job";

        inbox.cancelJob(7);
        EXPECT_TRUE(inbox.isCancelled(7));
        EXPECT_FALSE(inbox.isCancelled(8));

        inbox.forgetJob(7);
        EXPECT_FALSE(inbox.isCancelled(7));
        inbox.cancelJob(7);
        EXPECT_FALSE(inbox.isCancelled(7));
    }
}

TEST(InboxTest, AWriteIsNoJob)
{
    Inbox inbox(blockingWaits());
    inbox.put(write(7));
    inbox.put(stop(8));

    inbox.cancelJob(7);
    inbox.cancelJob(8);
    inbox.cancelJob(0);
    inbox.cancelJob(1);

    EXPECT_FALSE(inbox.isCancelled(1));
    EXPECT_FALSE(inbox.isCancelled(7));
    EXPECT_FALSE(inbox.isCancelled(8));
    EXPECT_FALSE(inbox.isCancelled(0));
}

TEST(InboxTest, AUserIsNoticedOnce)
{
    Inbox inbox(blockingWaits());
    EXPECT_FALSE(inbox.takeUser());
    inbox.noteUser();

    EXPECT_TRUE(inbox.takeUser());
    EXPECT_FALSE(inbox.takeUser());
}
