// SPDX-License-Identifier: MIT
// The cycle over the line in memory: gaps, deadlines, stale input and a line that goes away.
#include "host/exchange/cycle.h"
#include "host/line/memory_line.h"

#include "driver_fixture.h"

#include <stdexcept>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

QByteArray withGoodCrc(const std::string &hex)
{
    const std::vector<unsigned char> bytes = withCrc(fromHex(hex));
    QByteArray frame;
    for (unsigned char byte : bytes)
        frame.append(static_cast<char>(byte));
    return frame;
}

LinkSettings twoTries()
{
    LinkSettings settings;
    settings.retryLimit = 2;
    return settings;
}

/// 10000 bit/s: a character takes 1 ms, the gap is 3.5 ms; 100 ms response timeout.
LineSettings slow()
{
    LineSettings settings;
    settings.speed = 10000;
    settings.responseTimeout = milliseconds(100);
    return settings;
}

class CycleTest : public ::testing::Test {
protected:
    CycleTest() { link.poll({ wanted(1, QStringLiteral("D"), 0) }); }

    int value() const { return link.registerState(1, QStringLiteral("D"), 0).value; }

    QByteArray answer = withGoodCrc("01 03 02 12 34");
    Duration delay { 0 };
    Link link { Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
                twoTries() };
    MemoryLine line { [this](const QByteArray &) {
                         return MemoryLine::Answer { answer, delay };
                     },
                      slow() };
    LineExchange exchange { line };
    Cycle cycle { link, exchange };
};

} // namespace

TEST_F(CycleTest, AnAnsweredRequestIsServed)
{
    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Served);
    EXPECT_EQ(value(), 0x1234);
    EXPECT_EQ(cycle.reply().kind, Reply::Kind::Complete);
    EXPECT_EQ(line.sent(), QVector<QByteArray> { withGoodCrc("01 03 D0 00 00 01") });
}

TEST_F(CycleTest, AnExchangeIsCountedBeforeWhatAHandlerThrewLeaves)
{
    link.onChange([](const ValueChange &) { throw std::runtime_error("handler"); });

    EXPECT_THROW(cycle.step(), std::runtime_error);

    EXPECT_EQ(value(), 0x1234);
    EXPECT_EQ(cycle.counters().total().requests, 1U);
    EXPECT_EQ(cycle.counters().total().good, 1U);
    EXPECT_TRUE(link.api().state->sendFrames.isEmpty());
}

TEST_F(CycleTest, NothingToSendIsIdleAndTouchesNoLine)
{
    link.poll({});

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Idle);
    EXPECT_EQ(line.sent().size(), 0);
    EXPECT_EQ(cycle.counters().total().requests, 0U);
}

TEST_F(CycleTest, ARequestWaitsForTheGapAfterTheReplyBefore)
{
    cycle.step();
    const Duration replied = line.now();

    cycle.step();

    EXPECT_EQ(replied, milliseconds(8 + 7));
    EXPECT_EQ(line.now() - replied, Duration(3500) + milliseconds(8 + 7));
}

TEST_F(CycleTest, TheTimeoutGrowsByTheWireTimeOfRequestAndReply)
{
    answer.clear();

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Retry);
    EXPECT_EQ(cycle.reply().kind, Reply::Kind::Silence);
    EXPECT_EQ(cycle.reply().turnaround, milliseconds(8 + 100 + 7));
}

TEST_F(CycleTest, AReplyWhoseLastByteMeetsTheDeadlineIsInTime)
{
    delay = milliseconds(100);

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Served);
}

TEST_F(CycleTest, AReplyThatMissesTheDeadlineByAByteIsIncomplete)
{
    delay = milliseconds(101);

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Retry);
    EXPECT_EQ(cycle.reply().kind, Reply::Kind::Incomplete);
    EXPECT_EQ(cycle.reply().bytes.size(), 6);
    EXPECT_EQ(cycle.counters().total().truncated, 1U);
}

TEST_F(CycleTest, StaleInputIsDroppedBeforeTheRequest)
{
    line.inject(withGoodCrc("01 03 02 66 66"));
    line.advance(milliseconds(50));

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Served);
    EXPECT_EQ(value(), 0x1234);
}

TEST_F(CycleTest, AByteThatComesAsTheGapEndsIsDroppedToo)
{
    cycle.step();
    line.inject("x", Duration(2500)); // 3.5 ms behind the reply

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Served);
}

TEST_F(CycleTest, WhatAnExchangeTookAndBroughtIsReported)
{
    cycle.step();
    EXPECT_EQ(exchange.report().answerDelay.count(), 0);
    delay = milliseconds(30);

    cycle.step();

    EXPECT_EQ(exchange.report().answerDelay, milliseconds(30));
    EXPECT_EQ(exchange.report().bytesHeard, 7);
    EXPECT_EQ(cycle.reply().turnaround, milliseconds(8 + 30 + 7));
    EXPECT_EQ(cycle.counters().total().bytesReceived, 14U);
}

TEST_F(CycleTest, ARequestThatExpectsNothingIsCompleteAsItIsSent)
{
    FRAME_PRO request;
    request.sendLength = 8;
    for (int expected : { 0, -1 }) {
        request.replyLength = expected;

        const Reply reply = exchange.run(request);

        EXPECT_EQ(reply.kind, Reply::Kind::Complete) << expected;
        EXPECT_EQ(reply.turnaround, milliseconds(8)) << expected;
    }
}

TEST_F(CycleTest, AReplyOfOneByteIsIncomplete)
{
    answer = QByteArray(1, '\x01');

    cycle.step();

    EXPECT_EQ(cycle.reply().kind, Reply::Kind::Incomplete);
}

TEST_F(CycleTest, WhatTheDriverBelievesWithoutAGuardIsCountedAsGood)
{
    answer = withGoodCrc("02 03 02 12 34");

    const Cycle::Step step = cycle.step();

    EXPECT_EQ(step, Cycle::Step::Served);
    EXPECT_EQ(cycle.counters().total().good, 1U);
    EXPECT_EQ(cycle.counters().total().foreign, 0U);
}

TEST_F(CycleTest, CountsEveryAttemptAndEveryReadThatHasEnded)
{
    cycle.step();
    EXPECT_EQ(cycle.counters().attempts(), 1U);
    EXPECT_EQ(cycle.counters().endedReads(), 1U);
    answer[5] = static_cast<char>(answer.at(5) ^ 1);

    cycle.step();
    EXPECT_EQ(cycle.counters().endedReads(), 1U);
    cycle.step();

    EXPECT_EQ(cycle.counters().attempts(), 3U);
    EXPECT_EQ(cycle.counters().endedReads(), 2U);
}

TEST_F(CycleTest, AWrongCrcIsABadReply)
{
    answer[5] = static_cast<char>(answer.at(5) ^ 1);

    const Cycle::Step first = cycle.step();
    const Cycle::Step second = cycle.step();

    EXPECT_EQ(first, Cycle::Step::Retry);
    EXPECT_EQ(second, Cycle::Step::GivenUp);
    EXPECT_EQ(cycle.counters().total().badCrc, 2U);
    EXPECT_EQ(cycle.counters().total().retries, 1U);
    EXPECT_EQ(cycle.counters().total().giveUps, 1U);
    EXPECT_TRUE(link.registerState(1, QStringLiteral("D"), 0).failed);
}

TEST_F(CycleTest, AnUnpluggedLineCountsAgainstNoRequest)
{
    line.unplug();

    const Cycle::Step first = cycle.step();
    const Cycle::Step second = cycle.step();
    line.plugIn();
    line.open(nullptr);
    const Cycle::Step third = cycle.step();

    EXPECT_EQ(first, Cycle::Step::LineDown);
    EXPECT_EQ(second, Cycle::Step::LineDown);
    EXPECT_EQ(third, Cycle::Step::Served);
    EXPECT_EQ(cycle.counters().lineDowns(), 2U);
    EXPECT_EQ(cycle.counters().total().giveUps, 0U);
}

namespace {

/// Takes a request and is gone as its reply is awaited.
class LineThatBreaksAsItListens : public MemoryLine {
public:
    LineThatBreaksAsItListens()
        : MemoryLine([](const QByteArray &) { return Answer {}; }, slow())
    {
        open(nullptr);
    }

    QByteArray receive(int, Duration) override
    {
        close();
        return {};
    }
};

} // namespace

TEST_F(CycleTest, ALineThatBreaksAsAReplyIsAwaitedIsDown)
{
    LineThatBreaksAsItListens breaking;
    LineExchange overBreaking(breaking);

    EXPECT_EQ(Cycle(link, overBreaking).step(), Cycle::Step::LineDown);
}

TEST_F(CycleTest, ALineThatBreaksInsideAReplyKeepsTheRequest)
{
    MemoryLine *broken = nullptr;
    MemoryLine breaking([&broken](const QByteArray &) {
        broken->unplug();
        return MemoryLine::Answer {};
    });
    broken = &breaking;
    LineExchange overBreaking(breaking);
    Cycle interruptedCycle(link, overBreaking);

    const Cycle::Step interrupted = interruptedCycle.step();
    const Cycle::Step resumed = cycle.step();

    EXPECT_EQ(interrupted, Cycle::Step::LineDown);
    EXPECT_EQ(resumed, Cycle::Step::Served);
    EXPECT_EQ(value(), 0x1234);
}
