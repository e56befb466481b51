// SPDX-License-Identifier: MIT
// A recording played once more gives the callbacks and the cache of the first time.
#include "host/exchange/guarded_exchange.h"
#include "host/line/memory_line.h"
#include "host/recording/recording_line.h"
#include "host/recording/replay.h"

#include "host_bytes.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

using namespace dx4::host;
using Texts = std::vector<std::string>;
using std::chrono::milliseconds;

namespace {

LinkSettings twoTries()
{
    LinkSettings settings;
    settings.retryLimit = 2;
    return settings;
}

/// A link that polls "D 0-1" and "SW" of station 1 and notes every change with the visible value.
class WatchedLink {
public:
    WatchedLink()
        : link(Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
               twoTries())
    {
        link.poll({ wanted(1, QStringLiteral("D"), 0, 2), wanted(1, QStringLiteral("SW"), 0) });
        link.onChange([this](const ValueChange &change) {
            const int value = link.registerState(change.station, change.name, change.address).value;
            changes.push_back(std::to_string(change.station) + ' ' + change.name.toStdString() + ' '
                              + std::to_string(change.address) + " = " + std::to_string(value));
        });
    }

    Texts cache() const
    {
        Texts texts;
        for (const _DATA_ &record : link.api().state->dataAreas)
            texts.push_back(std::to_string(record.station) + ' ' + record.regType.toStdString()
                            + ' ' + std::to_string(record.address) + " = " + toHex(record.value, 2)
                            + (record.flag0 ? " failed" : ""));
        return texts;
    }

    Texts changes;
    Link link;
};

/// A session against a line that answers in order, recorded; then played into a second link.
class ReplayTest : public ::testing::Test {
protected:
    /// One step of the first session, answered by `reply`.
    void step(const QByteArray &reply)
    {
        answer = reply;
        firstCycle.step();
    }

    ReplayResult play()
    {
        ReplayLine replayed(ring.frames(), LineSettings());
        LineExchange exchange(replayed);
        return replay(second.link, replayed, exchange);
    }

    QByteArray answer;
    Duration delay { 0 };
    FrameRing ring;
    WatchedLink first;
    WatchedLink second;
    std::function<QByteArray(const QByteArray &)> answerTo; ///< in place of `answer` where set
    MemoryLine line { [this](const QByteArray &request) {
        return MemoryLine::Answer { answerTo ? answerTo(request) : answer };
    } };
    RecordingLine recording { line, ring };
    LineExchange firstExchange { recording };
    Cycle firstCycle { first.link, firstExchange };

    const QByteArray monitors = frameOf("01 03 04 12 34 00 07");
    const QByteArray status = frameOf("01 03 02 00 21");
};

} // namespace

TEST_F(ReplayTest, CyclicReadsGiveTheSameCallbacksAndCache)
{
    step(monitors);
    step(status);
    step(frameOf("01 03 04 12 35 00 07"));

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.played, 3);
    EXPECT_EQ(result.unrecorded, 0);
    EXPECT_EQ(second.changes,
              (Texts { "1 D 0 = 4660", "1 D 1 = 7", "1 SW 0 = 33", "1 D 0 = 4661" }));
    EXPECT_EQ(second.changes, first.changes);
    EXPECT_EQ(second.cache(), first.cache());
}

TEST_F(ReplayTest, RetriesAndGivenUpRequestsHappenAgain)
{
    step({});
    step(monitors.left(4));
    step(status);

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.played, 3);
    EXPECT_EQ(first.changes, Texts { "1 SW 0 = 33" });
    EXPECT_EQ(second.changes, first.changes);
    EXPECT_EQ(second.cache(),
              (Texts { "1 D 0 = 00 00 failed", "1 D 1 = 00 00 failed", "1 SW 0 = 21 00" }));
    EXPECT_EQ(second.cache(), first.cache());
}

TEST_F(ReplayTest, WhatTheGuardMadeOfTheLineItMakesAgain)
{
    GuardedExchange guarded(recording);
    Cycle guardedCycle(first.link, guarded);
    const QByteArray another = frameOf("01 03 04 77 77 00 07");
    const QVector<MemoryLine::Answer> answers = {
        { another, std::chrono::milliseconds(400) }, // after the timeout of 300 ms
        { bytesOf("FF FF") + monitors, Duration(0) },
        { frameOf("01 83 02"), Duration(0) },
        { frameOf("02 03 04 66 66 66 66"), Duration(0) },
    };
    for (const MemoryLine::Answer &next : answers) {
        answer = next.bytes;
        delay = next.delay;
        guardedCycle.step();
    }

    ReplayLine replayed(ring.frames(), LineSettings());
    GuardedExchange exchange(replayed);
    const ReplayResult result = replay(second.link, replayed, exchange);

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.played, 4);
    EXPECT_EQ(first.changes, (Texts { "1 D 0 = 30583", "1 D 1 = 7" }));
    EXPECT_EQ(second.changes, first.changes);
    EXPECT_EQ(second.cache(), first.cache());
}

TEST_F(ReplayTest, ReadsOfTheGuardsOwnComeBackAsOneOffReads)
{
    GuardedExchange guarded(recording);
    Cycle guardedCycle(first.link, guarded);
    first.link.write(1, QStringLiteral("FRE"), 0, { 500 });
    const std::map<QByteArray, QByteArray> replies = {
        { frameOf("01 03 20 00 00 01"), status },
        { frameOf("01 06 10 02 01 F4"), frameOf("01 06 10 02 01 F4") },
        { frameOf("01 03 D0 00 00 02"), monitors },
    };
    answerTo = [&replies](const QByteArray &request) { return replies.at(request); };
    guardedCycle.step();
    guardedCycle.step();

    ReplayLine replayed(ring.frames(), LineSettings());
    GuardedExchange exchange(replayed);
    const ReplayResult result = replay(second.link, replayed, exchange);

    EXPECT_TRUE(result.complete) << result.stoppedAt.toStdString();
    EXPECT_EQ(result.played, 5) << "three of the status word, the write and a polled block";
    EXPECT_EQ(first.changes, (Texts { "1 D 0 = 4660", "1 D 1 = 7" }));
    EXPECT_EQ(second.link.registerState(1, QStringLiteral("FRE"), 0).value, 500);
    EXPECT_EQ(second.link.registerState(1, QStringLiteral("D"), 0).value, 4660);
}

TEST_F(ReplayTest, WritesAreQueuedRightBeforeTheirTurn)
{
    step(monitors);
    first.link.write(1, QStringLiteral("CW"), 0, { 5 });
    step(frameOf("01 06 10 01 00 05"));
    first.link.write(1, QStringLiteral("F"), 0x0A02, { 1, 2 });
    step(frameOf("01 10 FC 02 00 02"));
    step(status);

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.played, 4);
    EXPECT_EQ(first.changes, (Texts { "1 D 0 = 4660", "1 D 1 = 7", "1 SW 0 = 33" }));
    EXPECT_EQ(second.changes, first.changes);
    EXPECT_EQ(second.cache(), first.cache());
}

TEST_F(ReplayTest, AReadOutsideTheRotationIsAConditionRead)
{
    step(monitors);
    first.link.addConditionRead(1, QStringLiteral("F"), 0x0003, 1);
    step(frameOf("01 03 02 00 09"));
    step(status);

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(first.changes, (Texts { "1 D 0 = 4660", "1 D 1 = 7", "-1 -1 0 = 0", "1 SW 0 = 33" }));
    EXPECT_EQ(second.changes, first.changes);
    EXPECT_EQ(second.cache(), first.cache());
}

TEST_F(ReplayTest, APolledBlockReadOutOfTurnIsAConditionRead)
{
    step(monitors);
    first.link.addConditionRead(1, QStringLiteral("D"), 0, 2);
    step(frameOf("01 03 04 12 35 00 07"));
    step(status);

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.unrecorded, 0);
    EXPECT_EQ(
        first.changes,
        (Texts { "1 D 0 = 4660", "1 D 1 = 7", "1 D 0 = 4661", "-1 -1 0 = 0", "1 SW 0 = 33" }));
    EXPECT_EQ(second.changes, first.changes);
}

TEST_F(ReplayTest, ABlockThatTheRecordingLeavesOutFails)
{
    FrameRing onlyStatus;
    onlyStatus.addRequest(Duration(0), frameOf("01 03 20 00 00 01"));
    onlyStatus.addReplyBytes(Duration(1), status, Duration(0));
    ring = onlyStatus;

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.unrecorded, 2);
    EXPECT_EQ(second.cache(),
              (Texts { "1 D 0 = 00 00 failed", "1 D 1 = 00 00 failed", "1 SW 0 = 21 00" }));
}

TEST_F(ReplayTest, AReplyWhoseRequestWasForgottenIsLeftOut)
{
    FrameRing shortened(3);
    shortened.addRequest(Duration(0), frameOf("01 03 D0 00 00 02"));
    shortened.addReplyBytes(Duration(1), monitors, Duration(0));
    shortened.addRequest(Duration(2), frameOf("01 03 D0 00 00 02"));
    shortened.addReplyBytes(Duration(3), monitors, Duration(0));
    ring = shortened;

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.played, 1);
}

namespace {

/// "D 20" of station 1 and "D 3" of station 2 by turns.
FrameRing twoStations()
{
    FrameRing ring;
    for (int round = 0; round < 3; ++round) {
        const Duration begin = std::chrono::seconds(round);
        ring.addRequest(begin, frameOf("01 03 D0 14 00 01"));
        ring.addReplyBytes(begin + milliseconds(30), frameOf("01 03 02 00 4D"), Duration(0));
        ring.addRequest(begin + milliseconds(100), frameOf("02 03 D0 03 00 01"));
        ring.addReplyBytes(begin + milliseconds(130), frameOf("02 03 02 00 58"), Duration(0));
    }
    return ring;
}

} // namespace

TEST_F(ReplayTest, ReadsOfTwoStationsArePlayedAsTheyWerePolled)
{
    second.link.poll({ wanted(1, QStringLiteral("D"), 20), wanted(2, QStringLiteral("D"), 3) });
    ReplayLine replayed(twoStations().frames(), LineSettings());
    GuardedExchange exchange(replayed);

    const ReplayResult result = replay(second.link, replayed, exchange);

    EXPECT_TRUE(result.complete) << result.stoppedAt.toStdString();
    EXPECT_EQ(result.played, 6);
    EXPECT_EQ(result.unrecorded, 0);
    EXPECT_EQ(second.changes, (Texts { "1 D 20 = 77", "2 D 3 = 88" }));
}

TEST_F(ReplayTest, ReadsThatAreNoPolledBlocksArePlayedOneByOne)
{
    second.link.poll(
        { wanted(1, QStringLiteral("D"), 20, 2), wanted(2, QStringLiteral("D"), 3, 2) });
    ReplayLine replayed(twoStations().frames(), LineSettings());
    GuardedExchange exchange(replayed);

    const ReplayResult result = replay(second.link, replayed, exchange);

    EXPECT_TRUE(result.complete) << result.stoppedAt.toStdString();
    EXPECT_EQ(result.played, 6);
    EXPECT_EQ(second.changes,
              (Texts { "1 D 20 = 77", "-1 -1 0 = 0", "2 D 3 = 88", "-1 -1 0 = 0", "-1 -1 0 = 0",
                       "-1 -1 0 = 0", "-1 -1 0 = 0", "-1 -1 0 = 0" }))
        << "each is a condition read with its outcome";
}

TEST_F(ReplayTest, PolledBlocksThatTheRecordingLacksKeepNothingBack)
{
    second.link.poll({ wanted(1, QStringLiteral("D"), 20), wanted(1, QStringLiteral("SW"), 0),
                       wanted(1, QStringLiteral("FU"), 0), wanted(2, QStringLiteral("D"), 3),
                       wanted(2, QStringLiteral("SW"), 0), wanted(2, QStringLiteral("FU"), 0) });
    ReplayLine replayed(twoStations().frames(), LineSettings());
    GuardedExchange exchange(replayed);

    const ReplayResult result = replay(second.link, replayed, exchange);

    EXPECT_TRUE(result.complete) << result.stoppedAt.toStdString();
    EXPECT_EQ(result.played, 6);
    EXPECT_GT(result.unrecorded, 0);
    EXPECT_EQ(second.changes, (Texts { "1 D 20 = 77", "2 D 3 = 88" }));
}

TEST_F(ReplayTest, ARequestOfAnotherKindStopsTheReplayAndIsNamed)
{
    step(monitors);
    ring.addRequest(Duration(0), bytesOf("01 2B 0E 01 00 70 77"));

    const ReplayResult result = play();

    EXPECT_FALSE(result.complete);
    EXPECT_EQ(result.played, 1);
    EXPECT_EQ(result.stoppedAt.toStdString(), "01 2B 0E 01 00 70 77");
}

TEST_F(ReplayTest, WhatIsNoRequestOfTheDriversKindIsNotTried)
{
    const std::pair<const char *, QByteArray> rows[] = {
        { "a read without its last byte", frameOf("01 03 D0 00 00 02").left(7) },
        { "a register of no type", frameOf("01 03 00 00 00 01") },
        { "a write that tells more registers than it has", frameOf("01 10 FC 02 00 02 02 00 05") },
        { "a write that tells fewer registers than it has",
          frameOf("01 10 FC 02 00 01 04 00 05 00 06") },
        { "another function", frameOf("01 04 D0 00 00 02") },
    };
    for (const auto &[name, request] : rows) {
        SCOPED_TRACE(name);
        ring = FrameRing();
        ring.addRequest(Duration(0), request);

        const ReplayResult result = play();

        EXPECT_FALSE(result.complete);
        EXPECT_EQ(result.stoppedAt, QString::fromLatin1(request.toHex(' ').toUpper()));
        EXPECT_EQ(result.unrecorded, 0);
    }
}

TEST_F(ReplayTest, ARequestThatTheDriverWouldSendOtherwiseIsWaitedForThroughAllTriesOfAllBlocks)
{
    step(monitors);
    ring.addRequest(Duration(0), frameOf("01 10 FC 02 00 01 02 00 05")); // one register goes as 06

    const ReplayResult result = play();

    EXPECT_FALSE(result.complete);
    EXPECT_EQ(result.stoppedAt.toStdString(), "01 10 FC 02 00 01 02 00 05 5B BE");
    EXPECT_EQ(result.unrecorded, 7) << "two tries of two blocks and of the write, and one more";
}

TEST_F(ReplayTest, ALinkThatHasNothingToSendEndsTheReplay)
{
    LinkSettings local;
    local.writesStayLocal = true;
    Link link(Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
              local);
    ring.addRequest(Duration(0), frameOf("01 06 10 01 00 05"));
    ReplayLine replayed(ring.frames(), LineSettings());
    LineExchange exchange(replayed);

    const ReplayResult result = replay(link, replayed, exchange);

    EXPECT_FALSE(result.complete);
    EXPECT_EQ(result.unrecorded, 0);
}

TEST_F(ReplayTest, ALinkThatPollsNothingReadsWhatWasReadOnce)
{
    Link link(Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
              twoTries());
    step(monitors);
    ReplayLine replayed(ring.frames(), LineSettings());
    LineExchange exchange(replayed);

    const ReplayResult result = replay(link, replayed, exchange);

    EXPECT_TRUE(result.complete) << result.stoppedAt.toStdString();
    EXPECT_EQ(result.played, 1);
    EXPECT_EQ(result.unrecorded, 0);
}

TEST_F(ReplayTest, AWriteAndAReadThatWereRepeatedAreQueuedOnce)
{
    step(monitors);
    first.link.write(1, QStringLiteral("CW"), 0, { 5 });
    step({});
    step(frameOf("01 06 10 01 00 05"));
    first.link.addConditionRead(1, QStringLiteral("F"), 0x0003, 1);
    step({});
    step(frameOf("01 03 02 00 09"));
    step(status);

    const ReplayResult result = play();

    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.played, 6);
    EXPECT_EQ(result.unrecorded, 0);
    EXPECT_EQ(second.link.waitingWrites(), 0);
    EXPECT_EQ(second.link.waitingConditionReads(), 0);
    EXPECT_EQ(second.changes, first.changes);
}

TEST(ReplayLineTest, ARequestThatIsNotTheNextOneIsCountedAndNotAnswered)
{
    FrameRing ring;
    ring.addRequest(Duration(0), frameOf("01 03 D0 00 00 02"));
    ring.addReplyBytes(Duration(1), frameOf("01 03 04 12 34 00 07"), Duration(0));
    ReplayLine line(ring.frames(), LineSettings());

    line.send(frameOf("01 03 D0 01 00 01"));
    line.send({});

    EXPECT_EQ(line.unrecorded(), 2);
    EXPECT_EQ(line.played(), 0);
    EXPECT_EQ(line.receive(1, line.now() + milliseconds(100)), QByteArray());
    line.send(frameOf("01 03 D0 00 00 02"));
    EXPECT_EQ(line.unrecorded(), 2);
    EXPECT_EQ(line.played(), 1);
    EXPECT_EQ(line.receive(9, line.now() + milliseconds(100)), frameOf("01 03 04 12 34 00 07"));
}

TEST(ReplayLineTest, ARecordingWithoutARequestIsEmpty)
{
    FrameRing ring;
    ring.addReplyBytes(Duration(1), "a", Duration(0));
    const ReplayLine line(ring.frames(), LineSettings());

    EXPECT_EQ(line.nextRequest(), QByteArray());
    EXPECT_EQ(line.requestAfterNext(), QByteArray());
    EXPECT_FALSE(line.isAhead("a"));
}

TEST(ReplayLineTest, TellsWhichRequestsStandAhead)
{
    FrameRing ring;
    ring.addRequest(Duration(0), "a");
    ring.addRequest(Duration(1), "b");
    ring.addReplyBytes(Duration(2), "reply", Duration(0));
    ring.addRequest(Duration(3), "c");
    ReplayLine line(ring.frames(), LineSettings());

    EXPECT_EQ(line.requestAfterNext(), "b");
    EXPECT_TRUE(line.isAhead("a"));
    EXPECT_TRUE(line.isAhead("c"));
    EXPECT_FALSE(line.isAhead("reply"));
    EXPECT_FALSE(line.isAhead("d"));
    line.send("a");
    EXPECT_FALSE(line.isAhead("a"));
    EXPECT_EQ(line.requestAfterNext(), "c");
}
