// SPDX-License-Identifier: MIT
// Jobs on a runtime, step by step: how they end, and what is noted of what was held before.
#include "host/line/waits.h"
#include "host/service/job_runner.h"
#include "runtime_fixture.h"

#include <stdexcept>

using namespace dx4::host;

namespace {

class JobRunnerTest : public ::testing::Test {
protected:
    JobRunnerTest()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
        host.host.onOutcome([this](WriteOutcome outcome) {
            if (runner.takeOutcome(outcome))
                outcomes.push_back(outcome);
        });
    }

    /// Puts a job in as a user does.
    void give(const Job &job)
    {
        std::visit([this](const auto &any) { inbox.put(any); }, job);
        inbox.take();
        runner.add(job);
    }

    bool canBeCancelled(int id)
    {
        inbox.cancelJob(id);
        return inbox.isCancelled(id);
    }

    Runtime::Step turn()
    {
        beforeTurn();
        return host.host.step();
    }

    qsizetype parametersRead() const
    {
        const auto &sent = host.stations.line.sent();
        return std::count_if(sent.begin(), sent.end(), [](const QByteArray &frame) {
            return frame.at(1) == 3 && (frame.at(2) & 0xF0) == 0xF0;
        });
    }

    /// Does something while the first write is on the line.
    void asTheFirstIsWritten(const std::function<void()> &act)
    {
        auto isDone = std::make_shared<bool>(false);
        const auto watch = [act, isDone](const QByteArray &reply) {
            if (reply.at(1) == 6 && !std::exchange(*isDone, true))
                act();
            return MemoryLine::Answer { reply, Duration { 0 } };
        };
        host.stations.changes.assign(50, watch);
    }

    /// Before each step of the line.
    std::function<void()> beforeTurn = [] {};
    RuntimeUnderTest host;
    Inbox inbox { blockingWaits() };
    std::vector<ServiceEvent> told;
    std::vector<WriteOutcome> outcomes;
    JobRunner runner { host.host, inbox, [this] { return turn(); },
                       [this](ServiceEvent event) { told.push_back(std::move(event)); } };
};

ParameterSet twoValues()
{
    ParameterSet set;
    set.values = { { 0x0105, 5 }, { 0x0106, 6 } };
    return set;
}

} // namespace

TEST_F(JobRunnerTest, AJobThatHasEndedCanNotBeCancelled)
{
    give(ReadOnce { 1, 1, QStringLiteral("D"), 3, 1 });
    give(ReadOnce { 2, 1, QStringLiteral("D"), 4, 1 });
    const bool before = canBeCancelled(2);

    runner.runNext();
    runner.endAll(QStringLiteral("enough"));

    EXPECT_TRUE(before);
    EXPECT_FALSE(canBeCancelled(1));
    EXPECT_EQ(told.size(), 2U);
    EXPECT_EQ(std::get<ReadEnded>(told.at(1)).result.reason.toStdString(), "enough");
}

TEST_F(JobRunnerTest, AJobOfALineThatThrowsCanNotBeCancelled)
{
    give(ReadOnce { 1, 1, QStringLiteral("D"), 3, 1 });
    beforeTurn = [] { throw std::runtime_error("adapter gone mad"); };

    EXPECT_THROW(runner.runNext(), std::runtime_error);

    EXPECT_FALSE(canBeCancelled(1));
    EXPECT_EQ(std::get<ReadEnded>(told.at(0)).result.reason.toStdString(), "the line failed");
}

TEST_F(JobRunnerTest, AJobThatIsEndedBeforeItBeginsCanNotBeCancelled)
{
    give(ReadOnce { 1, 1, QStringLiteral("D"), 3, 1 });

    runner.endAll(QStringLiteral("enough"));

    EXPECT_FALSE(canBeCancelled(1));
}

TEST_F(JobRunnerTest, ABackupUnderWayEndsWithTheService)
{
    give(BackUp { 1, {} });
    beforeTurn = [this] {
        if (parametersRead() == 3)
            inbox.close();
    };

    runner.runNext();

    const auto &end = std::get<BackupEnded>(told.back());
    EXPECT_EQ(end.error.toStdString(), "the service ends");
    EXPECT_EQ(parametersRead(), 3);
}

TEST_F(JobRunnerTest, ABackupThatIsCancelledBeforeItBeginsSendsNothing)
{
    give(BackUp { 1, {} });
    inbox.cancelJob(1);

    runner.runNext();
    host.steps(3);

    EXPECT_EQ(std::get<BackupEnded>(told.back()).error.toStdString(), "cancelled");
    EXPECT_EQ(parametersRead(), 0);
}

TEST_F(JobRunnerTest, ARestoreThatIsCancelledWritesNothingMore)
{
    give(Restore { 1, 1, twoValues() });
    asTheFirstIsWritten([this] { inbox.cancelJob(1); });

    runner.runNext();
    host.steps(3);

    EXPECT_EQ(host.sent(1, 6), 1);
    EXPECT_EQ(std::get<RestoreEnded>(told.back()).report.interrupted.toStdString(), "cancelled");
}

TEST_F(JobRunnerTest, AReadGoesBetweenTheWritesOfARestore)
{
    give(Restore { 1, 1, twoValues() });
    asTheFirstIsWritten([this] { give(ReadOnce { 2, 1, QStringLiteral("D"), 3, 1 }); });

    runner.runNext();

    const auto &sent = host.stations.line.sent();
    const auto read = sent.indexOf(framed("01 03 D0 03 00 01"));
    EXPECT_GT(read, sent.indexOf(framed("01 06 F1 05 00 05")));
    EXPECT_LT(read, sent.indexOf(framed("01 06 F1 06 00 06")));
}

TEST_F(JobRunnerTest, AWriteWhoseThreadEndsIsLeft)
{
    bool isClosing = false;
    JobAccess access(
        host.host,
        [&] {
            isClosing = true;
            return Runtime::Step::Idle;
        },
        [&] { return isClosing ? QStringLiteral("the service ends") : QString(); },
        [&] { return isClosing; });

    const AccessResult result = access.write(1, QStringLiteral("F"), 0x0105, 5);

    EXPECT_EQ(result.kind, AccessResult::Kind::LineDown);
    EXPECT_EQ(result.reason.toStdString(), "the service ends");
}

TEST_F(JobRunnerTest, WhatWasHeldBeforeAWriteIsSaidWhereItIsKnown)
{
    std::vector<QVector<quint16>> before;
    JobAccess access(
        host.host, [&] { return host.host.step(); }, [] { return QString(); },
        [] { return false; });
    host.host.onOutcome([&](WriteOutcome outcome) {
        if (access.takeOutcome(outcome))
            before.push_back(outcome.before);
    });

    access.write(1, QStringLiteral("F"), 0x0105, 5);
    access.write(1, QStringLiteral("F"), 0x0105, 6);
    access.write(1, QStringLiteral("F"), 0x0106, 7);
    access.read(1, QStringLiteral("F"), 0x0107, 1);
    host.write(1, "F", 0x0107, { 8 });
    access.write(1, QStringLiteral("F"), 0x0107, 9);

    const QVector<quint16> unknown;
    EXPECT_EQ(before,
              (std::vector<QVector<quint16>> { unknown, QVector<quint16> { 5 }, unknown, unknown }))
        << "another write of the last one was pending";
}
