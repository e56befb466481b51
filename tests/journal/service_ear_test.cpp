// SPDX-License-Identifier: MIT
// What a service tells is kept, and nothing that is not so.
#include "journal/journal_keeper.h"
#include "journal/service_ear.h"
#include "journal_fixture.h"
#include "plant.h"
#include "runtime_fixture.h"

#include <QCoreApplication>

#include <functional>

using namespace dx4::journal;
namespace host = dx4::host;

namespace {

/// A service over a plant whose signals are sent by the tests, or by the line.
class ServiceEarTest : public JournalTest {
protected:
    ServiceEarTest()
    {
        settings.interval = 3'600'000;
        settings.clock = [] { return noon; };
    }

    void start(const host::ServiceSettings &polled = {})
    {
        plant->hold();
        service = std::make_unique<host::LineService>(
            [shared = plant] {
                return host::LineParts { std::make_unique<PlantLine>(shared), privateCopy(), {} };
            },
            polled);
        keeper = std::make_unique<JournalKeeper>(path, settings);
        keeper->watch(*service, QStringLiteral("a"), words);
    }

    ~ServiceEarTest() override
    {
        plant->release();
        keeper.reset();
        service.reset();
    }

    Texts kept(EventKind kind)
    {
        EXPECT_TRUE(keeper->flush());
        EventQuery query;
        query.kinds = { kind };
        return texts(query);
    }

    static void waitFor(const std::function<bool()> &isSo)
    {
        while (!isSo())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    static host::RegisterValue valueOf(int address, quint16 value)
    {
        host::RegisterValue shown;
        shown.station = 1;
        shown.regType = QStringLiteral("D");
        shown.address = address;
        shown.state.value = value;
        shown.state.known = true;
        return shown;
    }

    /// Codes of the events of a kind, the oldest first; -1: none.
    std::vector<int> codes(EventKind kind)
    {
        EXPECT_TRUE(keeper->flush());
        EventQuery query;
        query.kinds = { kind };
        query.isOldestFirst = true;
        std::vector<int> found;
        const QVector<Event> all = events(query);
        for (const Event &event : all)
            found.push_back(event.code.value_or(-1));
        return found;
    }

    std::shared_ptr<Plant> plant = std::make_shared<Plant>(slowLine());
    KeeperSettings settings;
    Words words;
    std::unique_ptr<host::LineService> service;
    std::unique_ptr<JournalKeeper> keeper;
};

host::WriteOutcome outcomeOf(const char *type, host::WriteEnd end, bool sent)
{
    host::WriteOutcome outcome;
    outcome.end = end;
    outcome.sent = sent;
    outcome.text = QStringLiteral("what happened");
    outcome.wish = { 2, QString::fromLatin1(type), 5, { 9, 8 }, false, false };
    return outcome;
}

} // namespace

TEST_F(ServiceEarTest, AlarmsNoticesLineStationsAndStopsAreKept)
{
    start();

    Q_EMIT service->alarmRaised(QStringLiteral("fire"));
    Q_EMIT service->noticeGiven(QStringLiteral("slow"));
    Q_EMIT service->lineOpened();
    Q_EMIT service->lineWentDown(QStringLiteral("unplugged"));
    Q_EMIT service->stationLost(3);
    Q_EMIT service->stationBack(4);
    Q_EMIT service->stopEnded(1, { {}, QStringLiteral("all stops confirmed") });
    ASSERT_TRUE(keeper->flush());

    EXPECT_EQ(kept(EventKind::Alarm), Texts { "fire" });
    EXPECT_EQ(kept(EventKind::Notice), Texts { "slow" });
    EXPECT_EQ(kept(EventKind::Line), (Texts { "line opened", "line down: unplugged" }));
    EXPECT_EQ(kept(EventKind::Station),
              (Texts { "station 3 does not answer", "station 4 is back" }));
    EXPECT_EQ(kept(EventKind::Stop), Texts { "all stops confirmed" });
    EventQuery station;
    station.station = 4;
    EXPECT_EQ(texts(station), Texts { "station 4 is back" });
    EXPECT_EQ(events().constFirst().line, QStringLiteral("a"));
}

TEST_F(ServiceEarTest, WhatBeganAndWhatEndedIsToldByCodes)
{
    start();

    Q_EMIT service->lineOpened();
    Q_EMIT service->lineWentDown(QStringLiteral("unplugged"));
    Q_EMIT service->stationLost(3);
    Q_EMIT service->stationBack(3);
    Q_EMIT service->stopEnded(1, { { 2, 3 }, QStringLiteral("not confirmed") });
    Q_EMIT service->stopEnded(2, { {}, QStringLiteral("all stops confirmed") });
    Q_EMIT service->alarmRaised(QStringLiteral("fire"));

    EXPECT_EQ(codes(EventKind::Line), (std::vector<int> { 0, 1 }));
    EXPECT_EQ(codes(EventKind::Station), (std::vector<int> { 1, 0 }));
    EXPECT_EQ(codes(EventKind::Stop), (std::vector<int> { 2, 0 }));
    EXPECT_EQ(codes(EventKind::Alarm), (std::vector<int> { -1 }));
}

TEST_F(ServiceEarTest, AWriteIsKeptWithItsOutcomeAndEachRegisterWithItsValues)
{
    start();
    host::WriteOutcome outcome = outcomeOf("F", host::WriteEnd::TimedOut, true);
    outcome.before = { 7, 6 };

    Q_EMIT service->writeEnded(outcome);
    ASSERT_TRUE(keeper->flush());

    EXPECT_EQ(kept(EventKind::Write), Texts { "what happened" });
    EXPECT_EQ(kept(EventKind::Parameter),
              (Texts { "station 2, F 0.5 (0xF005): 7 to 9, timed out",
                       "station 2, F 0.6 (0xF006): 6 to 8, timed out" }));
    const Event second = events().at(0);
    EXPECT_EQ(second.station, 2);
    EXPECT_EQ(second.regType, QStringLiteral("F"));
    EXPECT_EQ(second.address, 6);
    EXPECT_EQ(second.before, 6);
    EXPECT_EQ(second.after, 8);
    EXPECT_EQ(second.code, static_cast<int>(host::WriteEnd::TimedOut));
    const Event whole = events().at(2);
    EXPECT_EQ(whole.station, 2);
    EXPECT_EQ(whole.regType, QStringLiteral("F"));
    EXPECT_EQ(whole.address, 5);
    EXPECT_EQ(whole.code, static_cast<int>(host::WriteEnd::TimedOut));
    EXPECT_EQ(reader()->wear()->size(), 2);
    EXPECT_EQ(reader()->wear()->at(0).writes, 1);
    EXPECT_EQ(reader()->wear()->at(1).at.address, 6);
    EXPECT_EQ(reader()->wear()->at(1).at.station, 2);
}

TEST_F(ServiceEarTest, WhatWasNotReadBeforeIsNotMadeUp)
{
    start();
    host::WriteOutcome outcome = outcomeOf("F", host::WriteEnd::Confirmed, true);
    outcome.before = { 7 };

    Q_EMIT service->jobWrote(outcome);

    EXPECT_EQ(kept(EventKind::Parameter),
              (Texts { "station 2, F 0.5 (0xF005): 7 to 9, confirmed",
                       "station 2, F 0.6 (0xF006): ? to 8, confirmed" }));
    EXPECT_EQ(events().constFirst().before, std::nullopt);
}

TEST_F(ServiceEarTest, WhatWasNotSentOrIsNoMemoryWearsNothing)
{
    start();

    Q_EMIT service->writeEnded(outcomeOf("F", host::WriteEnd::Confirmed, false));
    Q_EMIT service->writeEnded(outcomeOf("CW", host::WriteEnd::Confirmed, true));

    EXPECT_EQ(kept(EventKind::Write).size(), 2U);
    EXPECT_EQ(kept(EventKind::Parameter), Texts {});
    EXPECT_EQ(reader()->wear()->size(), 0);
}

TEST_F(ServiceEarTest, ARestoreIsKeptWithWhatItCameTo)
{
    start();
    host::RestoreReport report;
    report.written = 3;
    report.verified = 200;
    report.refused = QStringList { QStringLiteral("x") };
    report.remaining.resize(2);
    report.unseen = 4;
    Q_EMIT service->restored(1, report);
    report.interrupted = QStringLiteral("cancelled");

    Q_EMIT service->restored(2, report);

    EXPECT_EQ(kept(EventKind::Notice),
              (Texts { "restore ended: 3 written, 200 verified, 1 refused, 2 remaining, 4 unseen",
                       "restore ended: 3 written, 200 verified, 1 refused, 2 remaining, 4 unseen; "
                       "cancelled" }));
}

TEST_F(ServiceEarTest, FaultsAreKeptInTheWordsOfTheirConfiguration)
{
    words.faults.insert(17, QStringLiteral("door open"));
    start();
    host::RegisterValue fault = valueOf(0, 17);
    fault.regType = QStringLiteral("FU");

    Q_EMIT service->valuesChanged({ fault });
    words.faults.insert(18, QStringLiteral("too hot"));
    keeper->setWords(QStringLiteral("a"), words);
    keeper->setWords(QStringLiteral("unknown"), {});
    fault.state.value = 18;
    Q_EMIT service->valuesChanged({ fault });

    EXPECT_EQ(kept(EventKind::Fault),
              (Texts { "station 1: fault 17, door open", "station 1: fault 18, too hot" }));
    EXPECT_EQ(events().constFirst().line, QStringLiteral("a"));
}

TEST_F(ServiceEarTest, ValuesAreKeptAsCountsWithTheirQuality)
{
    start();
    host::RegisterValue negative = valueOf(0, 0xFFFF);
    negative.scaling.isSigned = true;
    host::RegisterValue large = valueOf(1, 0xFFFF);
    large.state.stale = true;
    host::RegisterValue failed = valueOf(2, 3);
    failed.state.failed = true;
    failed.state.stale = true;

    Q_EMIT service->valuesChanged({ negative, large, failed });
    ASSERT_TRUE(keeper->flush());

    EXPECT_EQ(history(noon, noon + 1), Texts { "0: -1 to -1, -1 (1)" });
    EXPECT_EQ(history(noon, noon + 1, 1000, 1), Texts { "0: 65535 to 65535, 65535 (1) bad" });
    EXPECT_EQ(number("SELECT quality FROM history_0 WHERE last = 65535"), 1);
    EXPECT_EQ(number("SELECT quality FROM history_0 WHERE last = 3"), 2);
}

TEST_F(ServiceEarTest, AWishAndAnUnknownValueAreNotKept)
{
    start();
    host::RegisterValue wish = valueOf(0, 5);
    wish.state.writePending = true;
    host::RegisterValue unknown = valueOf(1, 5);
    unknown.state.known = false;

    Q_EMIT service->valuesChanged({ wish, unknown });
    ASSERT_TRUE(keeper->flush());

    EXPECT_EQ(number("SELECT count(*) FROM history_0"), 0);
}

TEST_F(ServiceEarTest, RegistersThatStayAreStatedAndThoseThatAreNotGoodAreNot)
{
    settings.restate = 1;
    host::ServiceSettings polled;
    polled.plan = planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 0") } });
    plant->stations.registers[{ 1, 0xD000 }] = 42;
    plant->stations.dead = { 2 };
    start(polled);
    plant->release();

    waitFor([this] {
        return keeper->flush() && number("SELECT count(*) FROM history_0 WHERE count = 0") > 0;
    });

    EXPECT_EQ(number("SELECT last FROM history_0 JOIN series ON series.id = series"
                     " WHERE type = 'D' ORDER BY history_0.id DESC LIMIT 1"),
              42);
    EXPECT_EQ(number("SELECT count(*) FROM history_0 JOIN series ON series.id = series"
                     " WHERE station = 2"),
              0);
}

TEST_F(ServiceEarTest, AServiceThatIsGoneIsNotAskedAnyMore)
{
    settings.restate = 1;
    start();
    plant->release();
    service.reset();
    int turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++turns; });
    timer.start(1);

    waitFor([&] { return turns == 5; });

    EXPECT_TRUE(keeper->flush());
}

TEST_F(ServiceEarTest, WhatALineTellsIsKept)
{
    host::ServiceSettings polled;
    polled.plan = planOf({ { 1, QStringLiteral("D 0") } });
    start(polled);
    plant->release();

    service->submit({ 1, QStringLiteral("F"), 5, { 9 } });
    waitFor([this] { return !kept(EventKind::Parameter).empty(); });

    EXPECT_EQ(kept(EventKind::Line), Texts { "line opened" });
    EXPECT_EQ(kept(EventKind::Parameter), Texts { "station 1, F 0.5 (0xF005): 0 to 9, confirmed" });
    EXPECT_EQ(kept(EventKind::Write), Texts { "station 1, F 0.5 (0xF005): confirmed" });
    EXPECT_EQ(reader()->wear()->constFirst().writes, 1);
}
