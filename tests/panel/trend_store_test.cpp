// SPDX-License-Identifier: MIT
// What is recorded of a line: changes, silence, writes, faults.
#include "panel_fixture.h"

#include "panel/trend/trend_store.h"

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

const TraceKey frequencyKey { 1, QStringLiteral("D"), 0 };
const TraceKey statusKey { 1, QStringLiteral("SW"), 0 };

class TrendStoreTest : public ::testing::Test {
protected:
    TrendStoreTest()
    {
        QObject::connect(&store, &TrendStore::fired, &store,
                         [this](Moment at, const QString &what) {
                             firedAt = at;
                             firedBy = what.toStdString();
                         });
        store.look();
    }

    /// A read that brought another value, as the service tells it.
    void change(const TraceKey &key, quint16 value)
    {
        made.read(key.station, key.regType.toLatin1(), key.address, value);
        store.noteValues({ *made.find(key.station, key.regType.toLatin1(), key.address) });
        made.publish();
    }

    ColumnRun read(const TraceKey &key, std::size_t level = 0)
    {
        ColumnRun run;
        store.look();
        store.read(key, level, store.began(), store.now() + 1, &run);
        return run;
    }

    MadeUpLine made { 1 };
    TrendStore store { made.config, made.port().snapshot, made.clock() };
    Moment firedAt = 0;
    std::string firedBy;
};

} // namespace

TEST_F(TrendStoreTest, RecordsEveryRegisterThatHasAName)
{
    const QVector<TraceInfo> registers = store.registers();

    ASSERT_EQ(registers.size(), 10);
    EXPECT_EQ(registers[0].name.toStdString(), "output frequency");
    EXPECT_EQ(registers[0].drive.toStdString(), "Feed pump");
    EXPECT_EQ(store.nameOf({ statusKey, 1 }).toStdString(), "running");
    EXPECT_EQ(store.nameOf({ statusKey, 9 }).toStdString(), "bit 9");
}

TEST_F(TrendStoreTest, AValueThatIsReadAgainAndAgainIsKnownAllTheTime)
{
    change(frequencyKey, 4998);
    for (int i = 0; i < 60; ++i) {
        made.advance(seconds(1));
        made.read(1, "D", 0, 4998);
        made.publish();
        store.look();
    }

    const ColumnRun run = read(frequencyKey);

    EXPECT_EQ(run.columns.size(), 600U);
    for (const Column &column : run.columns)
        EXPECT_TRUE(column.isKnown() && !column.hasGap);
}

TEST_F(TrendStoreTest, AStationThatIsSilentLeavesAGapFromTheFifthSecondOn)
{
    change(frequencyKey, 4998);
    made.advance(seconds(20));
    made.publish();

    const ColumnRun run = read(frequencyKey);

    EXPECT_TRUE(run.columns.at(49).isKnown());
    EXPECT_FALSE(run.columns.at(51).isKnown());
    EXPECT_FALSE(run.columns.back().isKnown());
    EXPECT_FALSE(store.valueOf(frequencyKey));
}

TEST_F(TrendStoreTest, ALineThatHangsLeavesAGapAsWell)
{
    change(frequencyKey, 4998);
    made.advance(seconds(20));

    const ColumnRun run = read(frequencyKey);

    EXPECT_TRUE(run.columns.at(49).isKnown());
    EXPECT_FALSE(run.columns.at(51).isKnown());
}

TEST_F(TrendStoreTest, RecordsWhileNobodyLooks)
{
    change(frequencyKey, 100);
    made.advance(milliseconds(1500));
    change(frequencyKey, 9000);
    made.advance(milliseconds(10));
    change(frequencyKey, 100);
    made.advance(seconds(2));

    EXPECT_EQ(read(frequencyKey).columns.at(15).highest, 9000);
}

TEST_F(TrendStoreTest, AValueThatIsOnlyAskedForIsNotRecorded)
{
    change(frequencyKey, 100);
    RegisterValue wish = *made.find(1, "D", 0);
    wish.state.value = 7777;
    wish.state.writePending = true;

    store.noteValues({ wish });

    EXPECT_EQ(store.valueOf(frequencyKey), std::optional<quint16>(100));
}

TEST_F(TrendStoreTest, ALevelThatIsCrossedFiresTheTriggerAtItsMoment)
{
    change(frequencyKey, 3000);
    store.arm({ TriggerRule::When::Rises, frequencyKey, 40.0 });
    made.advance(seconds(3));

    change(frequencyKey, 4500);

    EXPECT_EQ(firedAt, store.began() + 3'000);
    EXPECT_EQ(firedBy, "Feed pump, output frequency: 45.00 Hz");
    EXPECT_FALSE(store.isArmed());
}

TEST_F(TrendStoreTest, AFaultFiresTheTriggerAndIsMarked)
{
    change({ 1, QStringLiteral("FU"), 0 }, 0);
    store.arm({ TriggerRule::When::Fault, {}, 0.0 });

    change({ 1, QStringLiteral("FU"), 0 }, 2);

    EXPECT_EQ(firedBy, "Feed pump, overvoltage");
    const QVector<Marker> markers = store.markers(store.began(), store.now() + 1);
    ASSERT_EQ(markers.size(), 2);
    EXPECT_EQ(markers[0].kind, Marker::Kind::Fault);
    EXPECT_EQ(markers[1].kind, Marker::Kind::Trigger);
}

TEST_F(TrendStoreTest, AFaultThatStaysIsMarkedOnceThoughItsStationWasSilent)
{
    change({ 1, QStringLiteral("FU"), 0 }, 2);
    made.advance(seconds(20));
    store.look();
    change({ 1, QStringLiteral("FU"), 0 }, 2);

    EXPECT_EQ(store.markers(0, store.now() + 1).size(), 1);
}

TEST_F(TrendStoreTest, WritesThatWentOutAreMarked)
{
    store.noteWriteEnded(ended(1, WriteEnd::Confirmed, "station 1, CW: written"));
    store.noteWriteEnded(ended(2, WriteEnd::Refused, "station 1, CW: refused"));

    const QVector<Marker> markers = store.markers(0, store.now() + 1);

    ASSERT_EQ(markers.size(), 1);
    EXPECT_EQ(markers[0].text.toStdString(), "station 1, CW: written");
}

TEST_F(TrendStoreTest, IsFlatOverADayOfChangesAndWrites)
{
    const std::size_t atFirst = store.bytes();

    for (int i = 0; i < 24 * 3600; i += 2) {
        made.advance(seconds(2));
        change(frequencyKey, static_cast<quint16>(i % 5000));
        store.noteWriteEnded(ended(i, WriteEnd::Confirmed));
    }

    EXPECT_EQ(store.bytes(), atFirst);
    EXPECT_EQ(store.markers(0, store.now() + 1).size(), 2'000);
}

TEST_F(TrendStoreTest, MomentsGoOnEvenlyWhenTheTimeOfDayIsSet)
{
    Clock clock = made.clock();
    QDateTime utc = clock.utc();
    clock.utc = [&] { return utc; };
    TrendStore other(made.config, made.port().snapshot, clock);
    made.advance(seconds(10));
    utc = utc.addSecs(3600).addMSecs(1);

    EXPECT_EQ(other.now(), other.began() + 10'000);
    EXPECT_EQ(other.clockShift(), 3'590'000);
}
