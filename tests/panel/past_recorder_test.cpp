// SPDX-License-Identifier: MIT
// What was shown before a fault, and right after it.
#include "panel_fixture.h"
#include "past_fixture.h"

#include "panel/past/past_recorder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

struct Recorded {
    Recorded()
        : recorder(made.clock().utc)
    {
        QObject::connect(&recorder, &PastRecorder::completed,
                         [this](const PastRecord &record) { records.push_back(record); });
    }

    void change(int station, const char *type, int address, quint16 value)
    {
        made.read(station, type, address, value);
        recorder.noteValues({ *made.find(station, type, address) });
    }

    void pass(Duration span)
    {
        made.advance(span);
        recorder.look();
    }

    MadeUpLine made;
    PastRecorder recorder;
    std::vector<PastRecord> records;
};

/// "D 0" of station 1 at a moment after noon; -1: not known.
int valueAt(const PastRecord &record, int ms)
{
    const LineSnapshot snapshot = snapshotAt(record, faultNoon + ms);
    const RegisterValue *value = snapshot.find(1, QStringLiteral("D"), 0);
    return value && value->state.known ? value->state.value : -1;
}

} // namespace

TEST(PastRecorder, GivesWhatWasBeforeAndAfterOnceThatIsOver)
{
    Recorded under;
    under.recorder.noteLine({});
    under.change(1, "D", 0, 100);
    under.pass(seconds(40));
    under.change(1, "D", 0, 200);
    under.pass(seconds(1));
    under.recorder.begin(1, 2);
    under.pass(seconds(3));
    under.change(1, "D", 0, 300);
    under.pass(milliseconds(1999));
    EXPECT_TRUE(under.records.empty());

    under.pass(milliseconds(1));

    ASSERT_EQ(under.records.size(), 1U);
    const PastRecord &record = under.records[0];
    EXPECT_EQ(record.faultAt, faultNoon + 41'000);
    EXPECT_EQ(record.from, faultNoon + 11'000);
    EXPECT_EQ(record.to, faultNoon + 46'000);
    EXPECT_EQ(valueAt(record, 11'000), 100);
    EXPECT_EQ(valueAt(record, 39'999), 100);
    EXPECT_EQ(valueAt(record, 40'000), 200);
    EXPECT_EQ(valueAt(record, 43'999), 200);
    EXPECT_EQ(valueAt(record, 44'000), 300);
    EXPECT_TRUE(snapshotAt(record, faultNoon + 11'000).isOpen);
}

TEST(PastRecorder, WhatIsLaterThanTheRecordIsNotInIt)
{
    Recorded under;
    under.change(1, "D", 0, 100);
    under.recorder.begin(1, 2);
    under.made.advance(seconds(6));
    under.change(1, "D", 0, 300);

    under.recorder.look();

    EXPECT_EQ(valueAt(under.records.at(0), 5000), 100);
    EXPECT_EQ(valueAt(under.records.at(0), 7000), 100);
}

TEST(PastRecorder, ARecordBeginsWhereTheProgramBegan)
{
    Recorded under;
    under.pass(seconds(2));
    under.change(1, "D", 0, 100);
    under.recorder.begin(1, 2);

    under.pass(seconds(5));

    EXPECT_EQ(under.records.at(0).from, faultNoon);
    EXPECT_EQ(valueAt(under.records.at(0), 1999), -1);
    EXPECT_EQ(valueAt(under.records.at(0), 2000), 100);
}

TEST(PastRecorder, TwoFaultsHaveARecordEach)
{
    Recorded under;
    under.recorder.begin(1, 2);
    under.pass(seconds(2));
    under.recorder.begin(2, 1);

    under.pass(seconds(3));
    EXPECT_EQ(under.records.size(), 1U);

    under.pass(seconds(2));
    ASSERT_EQ(under.records.size(), 2U);
    EXPECT_EQ(under.records[1].station, 2);
}

TEST(PastRecorder, IsBoundedOverADay)
{
    Recorded under;
    int most = 0;
    for (int i = 0; i < 86'400; ++i) {
        under.change(1, "D", 0, static_cast<quint16>(i));
        under.pass(seconds(1));
        most = std::max(most, under.recorder.held());
    }

    EXPECT_LE(most, 42);
}

TEST(PastRecorder, TooManyChangesMakeTheRecordShorterAndNeverWrong)
{
    Recorded under;
    under.change(1, "D", 0, 7);
    under.pass(seconds(1));
    for (int i = 0; i < PastRecorder::mostChanges; ++i)
        under.change(2, "D", 0, static_cast<quint16>(i));
    under.recorder.begin(1, 2);

    under.pass(seconds(5));

    EXPECT_EQ(under.recorder.held(), 100'000);
    EXPECT_EQ(valueAt(under.records.at(0), 1000), 7);
}

TEST(PastRecord, AValueThatWasNotReadGrowsOlder)
{
    PastRecord record = pastFault();
    PastChange lost;
    lost.time = faultNoon - 10'000;
    lost.place = 0;
    lost.state.known = true;
    lost.state.stale = true;
    lost.state.age = seconds(5);
    record.changes.append(lost);
    std::stable_sort(record.changes.begin(), record.changes.end(),
                     [](const PastChange &a, const PastChange &b) { return a.time < b.time; });

    const LineSnapshot before = snapshotAt(record, faultNoon - 10'001);
    const LineSnapshot after = snapshotAt(record, faultNoon - 3'000);

    EXPECT_EQ(before.registers[0].state.age, seconds(0));
    EXPECT_EQ(after.registers[0].state.age, seconds(12));
    EXPECT_TRUE(after.registers[0].state.stale);
}

TEST(PastRecord, ALineThatIsDownIsDownThenAsWell)
{
    PastRecord record = pastFault();
    record.line.append({ faultNoon + 1000, QStringLiteral("unplugged") });

    EXPECT_TRUE(snapshotAt(record, faultNoon + 999).isOpen);
    EXPECT_FALSE(snapshotAt(record, faultNoon + 1000).isOpen);
    EXPECT_EQ(snapshotAt(record, faultNoon + 1000).downReason.toStdString(), "unplugged");
}
