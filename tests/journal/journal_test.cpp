// SPDX-License-Identifier: MIT
// What is written into a journal is read from it.
#include "journal/csv.h"
#include "journal_fixture.h"
#include "synced_calls.h"

#include <QBuffer>
#include <QFile>

using namespace dx4::journal;

namespace {

Event fullEvent()
{
    Event event =
        eventOf("station 2, F 0.5 (0xF005): 7 to 9, confirmed", noon + 250, EventKind::Parameter);
    event.station = 2;
    event.regType = QStringLiteral("F");
    event.address = 5;
    event.code = 0;
    event.before = 7;
    event.after = 9;
    return event;
}

RegisterKey keyOf(int station, int address)
{
    return { QStringLiteral("a"), station, QStringLiteral("F"), address };
}

} // namespace

TEST_F(JournalTest, AnEventComesBackAsItWas)
{
    open();

    EXPECT_TRUE(writeEvents({ fullEvent() }));

    const Event read = events().constFirst();
    EXPECT_EQ(read.id, 1);
    EXPECT_EQ(read.start, 1);
    EXPECT_EQ(read.time, noon + 250);
    EXPECT_EQ(read.kind, EventKind::Parameter);
    EXPECT_EQ(read.line, QStringLiteral("a"));
    EXPECT_EQ(read.station, 2);
    EXPECT_EQ(read.regType, QStringLiteral("F"));
    EXPECT_EQ(read.address, 5);
    EXPECT_EQ(read.code, 0);
    EXPECT_EQ(read.before, 7);
    EXPECT_EQ(read.after, 9);
    EXPECT_EQ(read.text, fullEvent().text);
}

TEST_F(JournalTest, WhatAnEventDoesNotHaveIsNotMadeUp)
{
    open();
    Event bare;
    bare.start = 1;

    EXPECT_TRUE(writeEvents({ bare }));

    const Event read = events().constFirst();
    EXPECT_EQ(read.code, std::nullopt);
    EXPECT_EQ(read.before, std::nullopt);
    EXPECT_EQ(read.after, std::nullopt);
    EXPECT_EQ(read.line, QString());
    EXPECT_EQ(read.text, QString());
}

TEST_F(JournalTest, ATextIsCutAfterTwoThousandCharacters)
{
    open();
    Event event = eventOf("");
    event.text = QString(2001, QLatin1Char('x'));

    writeEvents({ event });

    EXPECT_EQ(events().constFirst().text, QString(2000, QLatin1Char('x')));
}

TEST_F(JournalTest, TheOrderIsThatOfWritingWhateverTheClockSays)
{
    open();
    Event setBack = eventOf("second", noon - 3'600'000);
    setBack.start = 2;

    writeEvents({ eventOf("first", noon), setBack });
    open();
    writeEvents({ eventOf("third", noon - 7'200'000) });

    EXPECT_EQ(texts(), (Texts { "first", "second", "third" }));
    EXPECT_EQ(events().constFirst().text, QStringLiteral("third"));
    const auto starts = reader()->starts();
    ASSERT_EQ(starts->size(), 3);
    EXPECT_EQ(events().at(0).start, 3);
    EXPECT_EQ(events().at(1).start, 2);
    EXPECT_EQ(starts->at(1).began, noon - 3'600'000);
}

TEST_F(JournalTest, AStartHasItsProgramItsTimesAndItsEnd)
{
    JournalSettings settings;
    settings.program = QStringLiteral("panel 1.2");
    open(settings);
    writeEvents({ eventOf("first", noon), eventOf("second", noon + 5000) });
    const bool wasEnded = reader()->starts()->constFirst().isEnded;

    journal->end();

    const JournalStart start = reader()->starts()->constFirst();
    EXPECT_FALSE(wasEnded);
    EXPECT_TRUE(start.isEnded);
    EXPECT_EQ(start.program, QStringLiteral("panel 1.2"));
    EXPECT_EQ(start.began, noon);
    EXPECT_EQ(start.last, noon + 5000);
}

TEST_F(JournalTest, EventsAreFoundByTimeKindLineStationAndText)
{
    open();
    Event other = eventOf("Other line", noon + 2);
    other.line = QStringLiteral("b");
    other.station = 7;
    writeEvents({ eventOf("early", noon), eventOf("50% alarm", noon + 1, EventKind::Alarm), other,
                  eventOf("late", noon + 3) });
    EventQuery window;
    window.window = { noon + 1, noon + 3 };
    EventQuery kinds;
    kinds.kinds = { EventKind::Alarm, EventKind::Fault };
    EventQuery line;
    line.line = QStringLiteral("b");
    EventQuery station;
    station.station = 7;
    EventQuery percent;
    percent.contains = QStringLiteral("0% ALARM");

    EXPECT_EQ(texts(window), (Texts { "50% alarm", "Other line" }));
    EXPECT_EQ(texts(kinds), Texts { "50% alarm" });
    EXPECT_EQ(texts(line), Texts { "Other line" });
    EXPECT_EQ(texts(station), Texts { "Other line" });
    EXPECT_EQ(texts(percent), Texts { "50% alarm" });
}

TEST_F(JournalTest, EventsAreReadPageByPageInBothDirections)
{
    open();
    writeEvents({ eventOf("1"), eventOf("2"), eventOf("3"), eventOf("4") });
    EventQuery query;
    query.most = 2;

    const QVector<Event> newest = events(query);
    query.before = newest.constLast().id;
    const QVector<Event> next = events(query);
    EventQuery later;
    later.after = next.constFirst().id;

    EXPECT_EQ(newest.constFirst().text, QStringLiteral("4"));
    EXPECT_EQ(newest.constLast().text, QStringLiteral("3"));
    EXPECT_EQ(next.constFirst().text, QStringLiteral("2"));
    EXPECT_EQ(texts(later), (Texts { "3", "4" }));
}

TEST_F(JournalTest, WritesOfARegisterAreAddedUp)
{
    open();

    write({ {}, {}, { { keyOf(1, 5), { keyOf(1, 5), 2, noon } } } });
    write({ {},
            {},
            { { keyOf(1, 5), { keyOf(1, 5), 1, noon + 9 } },
              { keyOf(1, 6), { keyOf(1, 6), 4, noon } } } });

    const auto wear = reader()->wear();
    ASSERT_EQ(wear->size(), 2);
    EXPECT_EQ(wear->at(0).at, keyOf(1, 6));
    EXPECT_EQ(wear->at(0).writes, 4);
    EXPECT_EQ(wear->at(1).at, keyOf(1, 5));
    EXPECT_EQ(wear->at(1).writes, 3);
    EXPECT_EQ(wear->at(1).last, noon + 9);
}

TEST_F(JournalTest, EventsAndWearAreBroughtToTheDiskAtOnceAndSamplesAreNot)
{
    open();
    writeEvents({ eventOf("first") });
    writeSamples({ sampleOf(1, noon) });

    const int before = syncedCalls();
    writeSamples({ sampleOf(1, noon + 1000) });
    const int afterSample = syncedCalls();
    writeEvents({ eventOf("second") });
    const int afterEvent = syncedCalls();
    write({ {}, {}, { { keyOf(1, 5), { keyOf(1, 5), 1, noon } } } });

    EXPECT_EQ(afterSample, before);
    EXPECT_EQ(afterEvent, afterSample + 1);
    EXPECT_EQ(syncedCalls(), afterEvent + 1);
}

TEST_F(JournalTest, TheSeriesOfAFileAreListed)
{
    open();
    Sample named = sampleOf(1, noon, 4);
    named.series.name = QStringLiteral("current");
    named.series.scaling = { 0.1, 5.0, true, 1, QStringLiteral("A") };
    writeSamples({ sampleOf(1, noon, 9), named });

    const auto series = reader()->series();

    ASSERT_EQ(series->size(), 2);
    EXPECT_EQ(series->at(0).at, seriesOf(4).at);
    EXPECT_EQ(series->at(0).name, QStringLiteral("current"));
    EXPECT_EQ(series->at(0).scaling.factor, 0.1);
    EXPECT_EQ(series->at(0).scaling.offset, 5.0);
    EXPECT_TRUE(series->at(0).scaling.isSigned);
    EXPECT_EQ(series->at(0).scaling.decimals, 1);
    EXPECT_EQ(series->at(0).scaling.unit, QStringLiteral("A"));
    EXPECT_EQ(series->at(1).at, seriesOf(9).at);
}

TEST_F(JournalTest, CsvHasALineForEachEventAndQuotesWhatNeedsIt)
{
    open();
    Event fault = eventOf("fault \"17\", door open", noon, EventKind::Fault);
    fault.line = QStringLiteral("hall 1, left");
    writeEvents({ fault, fullEvent() });
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);

    EXPECT_TRUE(exportCsv(*reader(), {}, buffer, nullptr));

    EXPECT_EQ(buffer.data().toStdString(),
              "id,start,time,kind,line,station,type,address,code,before,after,text\n"
              "1,1,2026-03-01T12:00:00.000Z,fault,\"hall 1, left\",,,,,,,"
              "\"fault \"\"17\"\", door open\"\n"
              "2,1,2026-03-01T12:00:00.250Z,parameter,a,2,F,5,0,7,9,"
              "\"station 2, F 0.5 (0xF005): 7 to 9, confirmed\"\n");
}

TEST_F(JournalTest, CsvQuotesTextsOfSeveralLines)
{
    Event event = eventOf("one\ntwo");
    Event carriage = eventOf("one\rtwo");

    EXPECT_TRUE(csvLine(event).endsWith(",\"one\ntwo\"\n"));
    EXPECT_TRUE(csvLine(carriage).endsWith(",\"one\rtwo\"\n"));
    EXPECT_TRUE(csvLine(eventOf("plain")).endsWith(",plain\n"));
}

TEST_F(JournalTest, CsvHoldsAsManyEventsAsThereAre)
{
    open();
    writeEvents(std::vector<Event>(2001, eventOf("x")));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EventQuery query;
    query.most = 5;

    EXPECT_TRUE(exportCsv(*reader(), query, buffer, nullptr));

    EXPECT_EQ(buffer.data().count('\n'), 2002);
    EXPECT_TRUE(buffer.data().contains("\n2001,1,"));
}

TEST_F(JournalTest, CsvThatCannotBeWrittenIsSaid)
{
    open();
    writeEvents({ eventOf("x") });
    QFile full(QStringLiteral("/dev/full"));
    ASSERT_TRUE(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QString error;

    EXPECT_FALSE(exportCsv(*reader(), {}, full, nullptr));
    EXPECT_FALSE(exportCsv(*reader(), {}, full, &error));

    EXPECT_EQ(error, QStringLiteral("No space left on device"));
}

TEST(EventKinds, HaveNames)
{
    Texts names;
    for (const EventKind kind : eventKinds)
        names.push_back(kindName(kind).toStdString());

    EXPECT_EQ(names,
              (Texts { "fault", "write", "parameter", "alarm", "notice", "line", "station", "stop",
                       "journal", "acknowledgement" }));
}
