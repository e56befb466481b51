// SPDX-License-Identifier: MIT
// A host that clears, extends, replaces, edits and snapshots the cache between calls.
#include "cycle_fixture.h"

#include <algorithm>

using Calls = std::vector<std::string>;

namespace {

class HostEdits : public CycleFixture {
protected:
    HostEdits() { init("1#0#0#1#10"); }

    /// Lets the device answer these values for "D" of station 1 from `address` on.
    void poll(int address, const std::vector<int> &values)
    {
        state.conditionList = { variable(1, "D", address, static_cast<int>(values.size())) };
        state.conditionVar = VARIABLE();
        nextFrame();
        answer(values);
    }
};

_DATA_ cached(int station, const char *type, int address, int value)
{
    _DATA_ data;
    data.station = station;
    data.regType = QString::fromLatin1(type);
    data.address = address;
    data.value[0] = static_cast<unsigned char>(value);
    return data;
}

} // namespace

TEST_F(HostEdits, AClearedCacheStartsFromZero)
{
    poll(0, { 0x11, 0x22, 0x33 });

    state.dataAreas.clear();

    EXPECT_EQ(data(1, "D", 1, 1), "00 00");
    EXPECT_EQ(cacheKeys(), "1 D 1");
}

TEST_F(HostEdits, AClearedCacheTakesTheNextReply)
{
    poll(0, { 0x11, 0x22, 0x33 });
    state.dataAreas.clear();

    poll(1, { 0x44, 0x55 });

    EXPECT_EQ(cacheKeys(), "1 D 1; 1 D 2");
    EXPECT_EQ(data(1, "D", 1, 2), "44 00 55 00");
}

TEST_F(HostEdits, AnAppendedRecordIsFound)
{
    poll(0, { 0x11 });

    state.dataAreas.append(cached(1, "D", 9, 0x99));

    EXPECT_EQ(data(1, "D", 9, 1), "99 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 9");
}

TEST_F(HostEdits, APrependedRecordMovesAllOthers)
{
    poll(0, { 0x11, 0x22 });

    state.dataAreas.prepend(cached(1, "D", 9, 0x99));

    EXPECT_EQ(data(1, "D", 0, 2), "11 00 22 00");
    EXPECT_EQ(data(1, "D", 9, 1), "99 00");
    EXPECT_EQ(cacheKeys(), "1 D 9; 1 D 0; 1 D 1");
}

TEST_F(HostEdits, ARemovedRecordIsCreatedAnewAtTheEnd)
{
    poll(0, { 0x11, 0x22, 0x33 });

    state.dataAreas.removeAt(1);

    EXPECT_EQ(data(1, "D", 0, 3), "11 00 00 00 33 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 2; 1 D 1");
}

TEST_F(HostEdits, ARecordReplacedByAnotherKeyIsFoundUnderThatKeyOnly)
{
    poll(0, { 0x11, 0x22, 0x33 });

    state.dataAreas[1] = cached(1, "D", 9, 0x99);

    EXPECT_EQ(data(1, "D", 9, 1), "99 00");
    EXPECT_EQ(data(1, "D", 1, 1), "00 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 9; 1 D 2; 1 D 1");
}

TEST_F(HostEdits, AKeyEditedInPlaceCounts)
{
    poll(0, { 0x11, 0x22, 0x33 });

    state.dataAreas[1].station = 2;

    EXPECT_EQ(data(2, "D", 1, 1), "22 00");
    EXPECT_EQ(data(1, "D", 1, 1), "00 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 2 D 1; 1 D 2; 1 D 1");
}

TEST_F(HostEdits, ATypeEditedInPlaceCounts)
{
    poll(0, { 0x11, 0x22 });

    state.dataAreas[0].regType = QStringLiteral("SW");

    EXPECT_EQ(data(1, "SW", 0, 1), "11 00");
    EXPECT_EQ(data(1, "D", 0, 1), "00 00");
}

TEST_F(HostEdits, TwoKeysThatChangePlacesInPlaceCount)
{
    poll(0, { 0x11, 0x22, 0x33, 0x44 });

    std::swap(state.dataAreas[1].address, state.dataAreas[2].address);

    EXPECT_EQ(data(1, "D", 0, 4), "11 00 33 00 22 00 44 00");
    EXPECT_EQ(state.dataAreas.size(), 4);
}

TEST_F(HostEdits, ACacheInAnotherOrderIsReadAsItIs)
{
    poll(0, { 0x11, 0x22, 0x33, 0x44 });

    std::reverse(state.dataAreas.begin(), state.dataAreas.end());

    EXPECT_EQ(data(1, "D", 0, 4), "11 00 22 00 33 00 44 00");
    EXPECT_EQ(cacheKeys(), "1 D 3; 1 D 2; 1 D 1; 1 D 0");
}

TEST_F(HostEdits, AReplacedCacheOfTheSameSizeIsReadAsItIs)
{
    poll(0, { 0x11, 0x22 });

    state.dataAreas = { cached(1, "D", 1, 0x77), cached(3, "F", 0, 0x88) };

    EXPECT_EQ(data(1, "D", 1, 1), "77 00");
    EXPECT_EQ(data(3, "F", 0, 1), "88 00");
    EXPECT_EQ(data(1, "D", 0, 1), "00 00");
    EXPECT_EQ(cacheKeys(), "1 D 1; 3 F 0; 1 D 0");
}

TEST_F(HostEdits, ARestoredSnapshotBringsTheOldCacheBack)
{
    poll(0, { 0x11, 0x22 });
    const QList<_DATA_> snapshot = state.dataAreas;
    poll(1, { 0x33, 0x44, 0x55 });

    state.dataAreas = snapshot;

    EXPECT_EQ(data(1, "D", 0, 2), "11 00 22 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 1");
    EXPECT_EQ(data(1, "D", 3, 1), "00 00");
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 1; 1 D 3");
}

TEST_F(HostEdits, AReplyAfterTheKeyWasEditedGoesToANewRecord)
{
    merge({ keyAddress(1, "D", 0, 2) });
    nextFrame();
    state.dataAreas[0].address = 50;

    answer({ 0x11, 0x22 });

    EXPECT_EQ(cacheKeys(), "1 D 50; 1 D 1; 1 D 0");
    EXPECT_EQ(data(1, "D", 0, 2), "11 00 22 00");
    EXPECT_EQ(data(1, "D", 50, 1), "00 00");
    EXPECT_EQ(calls, (Calls { "1 1 D 1" }));
}

TEST_F(HostEdits, AWriteAfterTheCacheWasReorderedSettlesItsOwnRegister)
{
    poll(0, { 0x11, 0x22, 0x33 });
    set(1, "D", 1, { 0x99 });
    nextFrame();
    std::reverse(state.dataAreas.begin(), state.dataAreas.end());

    echo();

    EXPECT_EQ(data(1, "D", 0, 3), "11 00 99 00 33 00");
    EXPECT_EQ(record(1, "D", 1).writePending, 0);
}

TEST_F(HostEdits, MergingAfterTheCacheWasEditedMarksTheRightRecords)
{
    merge({ keyAddress(1, "D", 0, 3) });
    std::swap(state.dataAreas[0].address, state.dataAreas[2].address);

    merge({ keyAddress(1, "D", 0, 1) });

    EXPECT_EQ(cacheKeys(), "1 D 2; 1 D 1; 1 D 0");
    EXPECT_EQ(state.dataAreas.at(0).flags, 0);
    EXPECT_EQ(state.dataAreas.at(1).flags, 0);
    EXPECT_EQ(state.dataAreas.at(2).flags, 1);
}

TEST_F(HostEdits, EveryKeyOfALargeCacheMayBeRotated)
{
    for (int address = 0; address < 2000; ++address)
        state.dataAreas.append(cached(1, "D", address, address % 200));
    ASSERT_EQ(data(1, "D", 1000, 1), "00 00");
    ASSERT_EQ(data(1, "D", 1999, 1), "C7 00");

    for (_DATA_ &edited : state.dataAreas)
        edited.address = (edited.address + 1) % 2000;

    EXPECT_EQ(data(1, "D", 1001, 1), "00 00");
    EXPECT_EQ(data(1, "D", 0, 1), "C7 00");
    EXPECT_EQ(state.dataAreas.size(), 2000);
}

TEST_F(HostEdits, ACacheSnapshotNeverChanges)
{
    poll(0, { 0x11 });
    const QList<_DATA_> snapshot = state.dataAreas;

    set(1, "D", 0, { 0x99 });
    poll(0, { 0x33, 0x44 });
    merge({ keyAddress(1, "D", 0, 1) });

    ASSERT_EQ(snapshot.size(), 1);
    EXPECT_EQ(snapshot.at(0).value[0], 0x11);
    EXPECT_EQ(snapshot.at(0).writePending, 0);
    EXPECT_EQ(snapshot.at(0).writeValue[0], 0);
    EXPECT_EQ(snapshot.at(0).flags, 0);
}

TEST_F(HostEdits, ASettledWriteLeavesASnapshotOfThePendingOne)
{
    set(1, "F", 0, { 0x99 });
    nextFrame();
    const QList<_DATA_> snapshot = state.dataAreas;

    echo();

    EXPECT_EQ(snapshot.at(0).writePending, 1);
    EXPECT_EQ(snapshot.at(0).value[0], 0);
}

TEST_F(HostEdits, AGivenUpReadLeavesASnapshotUnmarked)
{
    poll(0, { 0x11 });
    const QList<_DATA_> snapshot = state.dataAreas;
    readOnce(1, "D", 0, 1);
    nextFrame();

    silence();

    EXPECT_EQ(snapshot.at(0).flag0, 0);
    EXPECT_EQ(state.dataAreas.at(0).flag0, 1);
}

TEST_F(HostEdits, ASnapshotTakenInsideTheCallbackNeverChanges)
{
    merge({ keyAddress(1, "D", 0, 2) });
    nextFrame();
    std::vector<QList<_DATA_>> snapshots;
    insideCallback = [&](int, int, const QString &, int) { snapshots.push_back(state.dataAreas); };

    answer({ 0x11, 0x22 });

    ASSERT_EQ(snapshots.size(), 2U);
    EXPECT_EQ(snapshots.at(0).at(0).value[0], 0x11);
    EXPECT_EQ(snapshots.at(0).at(1).value[0], 0);
    EXPECT_EQ(snapshots.at(1).at(1).value[0], 0x22);
}
