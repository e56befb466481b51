// SPDX-License-Identifier: MIT
// What a journal kept, given to the trend after a restart.
#include "panel_fixture.h"

#include "panel/trend/journal_past.h"
#include "panel/trend/trend_store.h"

#include "journal/journal.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4;
using namespace dx4::panel;

namespace {

constexpr Moment noon = 1'772'366'400'000; // 2026-03-01 12:00 UTC
constexpr Moment minute = 60'000;
constexpr int patience = 20'000; // ms, for a busy machine

TraceInfo frequency()
{
    TraceInfo info;
    info.key = { 1, QStringLiteral("D"), 0 };
    info.name = QStringLiteral("output frequency");
    info.scaling.factor = 0.01;
    info.scaling.decimals = 2;
    return info;
}

journal::Sample sampleAt(Moment time, int lowest, int highest, int last)
{
    journal::Sample sample;
    sample.series.at = { QStringLiteral("line"), 1, QStringLiteral("D"), 0 };
    sample.series.name = frequency().name;
    sample.series.scaling = frequency().scaling;
    sample.start = 1;
    sample.time = time;
    sample.lowest = lowest;
    sample.highest = highest;
    sample.last = last;
    sample.count = 3;
    return sample;
}

journal::Event eventAt(Moment time, journal::EventKind kind, int code, const char *text)
{
    journal::Event event;
    event.start = 1;
    event.time = time;
    event.kind = kind;
    event.line = QStringLiteral("line");
    event.station = 1;
    event.code = code;
    event.text = QString::fromLatin1(text);
    return event;
}

class JournalPastTest : public ::testing::Test {
protected:
    JournalPastTest()
    {
        QObject::connect(
            &past, &JournalPast::rowsRead, &past,
            [this](const TraceKey &, int level, Moment width, const QVector<PastRow> &rows) {
                history.addPast(static_cast<std::size_t>(level), width, rows);
            });
        QObject::connect(&past, &JournalPast::markersRead, &past,
                         [this](const QVector<Marker> &read) { markers = read; });
    }

    void write(const journal::Batch &batch)
    {
        journal::Trouble trouble;
        const auto journal = journal::Journal::open(path, {}, &trouble);
        ASSERT_TRUE(journal && journal->write(batch, &trouble)) << trouble.text.toStdString();
        journal->end();
    }

    std::string ask()
    {
        QSignalSpy ended(&past, &JournalPast::ended);
        history.note(noon, 100);
        past.ask({ frequency() }, noon);
        if (!ended.wait(patience))
            return "it did not end";
        return ended.first().first().toString().toStdString();
    }

    Column at(std::size_t level, Moment moment)
    {
        ColumnRun run;
        history.read(level, moment, moment + 1, noon, &run);
        return run.columns.empty() ? Column() : run.columns.front();
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("journal.sqlite"));
    JournalPast past { path, QStringLiteral("line") };
    RegisterHistory history;
    QVector<Marker> markers;
};

} // namespace

TEST_F(JournalPastTest, PeaksOfBeforeTheRestartAreInEachLevelThatReachesThem)
{
    journal::Batch batch;
    batch.samples = { sampleAt(noon - 10 * minute, 300, 9000, 400),
                      sampleAt(noon - 9 * minute, 400, 400, 400) };
    write(batch);

    EXPECT_EQ(ask(), "");

    for (const std::size_t level : { 2U, 3U, 4U, 5U }) {
        EXPECT_EQ(at(level, noon - 10 * minute).highest, 9000) << level;
        EXPECT_EQ(at(level, noon - 10 * minute).lowest, 300) << level;
    }
    EXPECT_EQ(at(2, noon - 9 * minute - 30'000).last, 400);
    EXPECT_FALSE(at(2, noon - minute).isKnown());
}

TEST_F(JournalPastTest, FaultsThatCameAndWritesAreMarked)
{
    journal::Batch batch;
    batch.events = { eventAt(noon - 3 * minute, journal::EventKind::Write, 0, "CW written"),
                     eventAt(noon - 2 * minute, journal::EventKind::Fault, 2, "overvoltage"),
                     eventAt(noon - minute, journal::EventKind::Fault, 0, "no fault") };
    write(batch);

    EXPECT_EQ(ask(), "");

    ASSERT_EQ(markers.size(), 2);
    EXPECT_EQ(markers[0].text.toStdString(), "CW written");
    EXPECT_EQ(markers[1].kind, Marker::Kind::Fault);
    EXPECT_EQ(markers[1].at, noon - 2 * minute);
}

TEST_F(JournalPastTest, AFileThatIsNotThereIsNoHistoryAndSaysSo)
{
    EXPECT_NE(ask(), "");

    EXPECT_FALSE(at(5, noon - 10 * minute).isKnown());
}

TEST_F(JournalPastTest, WhatWasAskedForIsGivenUpWhereItEnds)
{
    write({});
    auto other = std::make_unique<JournalPast>(path, QStringLiteral("line"));
    int told = 0;
    QObject::connect(other.get(), &JournalPast::ended, [&] { ++told; });
    other->ask(QVector<TraceInfo>(200, frequency()), noon);

    other.reset();
    QCoreApplication::processEvents();

    EXPECT_EQ(told, 0);
}

TEST_F(JournalPastTest, EachRegisterThatIsLearnedGetsWhatWasKeptOfIt)
{
    journal::Batch batch;
    batch.samples = { sampleAt(noon - 10 * minute, 300, 9000, 400) };
    batch.events = { eventAt(noon - 3 * minute, journal::EventKind::Write, 0, "CW written") };
    write(batch);
    MadeUpLine made(1);
    TrendStore store(made.config, made.port().snapshot, made.clock());
    remember(store, past);
    QSignalSpy ended(&past, &JournalPast::ended);

    made.read(1, "D", 0, 100);
    made.publish();
    store.look();
    ASSERT_TRUE(ended.wait(patience));

    ColumnRun run;
    store.read({ 1, QStringLiteral("D"), 0 }, 5, noon - 10 * minute, noon, &run);
    ASSERT_FALSE(run.columns.empty());
    EXPECT_EQ(run.columns.front().highest, 9000);
    EXPECT_EQ(store.markers(noon - 10 * minute, noon).size(), 1);
}
