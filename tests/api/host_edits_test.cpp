// SPDX-License-Identifier: MIT
// A host that clears, extends, replaces, edits and snapshots the driver's lists between calls.
#include "cycle_fixture.h"

#include <algorithm>

using Calls = std::vector<std::string>;
using Served = std::vector<std::string>;

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

TEST_F(HostEdits, SnapshotsOfTheRequestListsNeverChange)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    readOnce(1, "SW", 0, 1);
    readOnce(1, "SW", 5, 1, 0, 1);
    set(1, "F", 0, { 0x11 });
    set(1, "F", 5, { 0x22 });
    const QList<VARIABLE> reads = state.readList;
    const QList<VARIABLE> conditions = state.conditionList;
    const QList<VARIABLE> writes = state.writeList;

    set(1, "F", 5, { 0x33 });
    readOnce(1, "SW", 5, 1, 0, 2);
    serveTimes(5);

    EXPECT_EQ(text(reads), "1 D 0 1; 1 D 5 1");
    EXPECT_EQ(text(conditions), "1 SW 0 1; 1 SW 5 1");
    EXPECT_EQ(conditions.at(1).varKind, 1);
    EXPECT_EQ(text(writes), "1 F 0 1; 1 F 5 1");
    EXPECT_EQ(toHex(writes.at(1).data, 2), "22 00");
    EXPECT_EQ(text(state.readList), "1 D 5 1; 1 D 0 1");
}

TEST_F(HostEdits, ASnapshotOfTheFramesNeverChanges)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    const QList<FRAME_PRO> snapshot = state.sendFrames;

    answer({ 1 });
    set(2, "F", 0, { 3 });
    nextFrame();

    ASSERT_EQ(snapshot.size(), 1);
    EXPECT_EQ(toHex(snapshot.at(0).frame, 8), "01 03 D0 05 00 01 AC CB");
    EXPECT_EQ(text(snapshot.at(0).var), "1 D 5 1");
}

TEST_F(HostEdits, TheFrameHandedOutIsACopy)
{
    readOnce(1, "D", 5, 1);
    nextFrame();

    frame.frame[0] = 0x77;
    frame.var.address = 99;

    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");
    EXPECT_EQ(text(frame.var), "1 D 5 1");
}

TEST_F(HostEdits, AClearedReadListEndsPolling)
{
    merge({ keyAddress(1, "D", 0, 1) });

    state.readList.clear();

    EXPECT_EQ(nextFrame(), "");
}

TEST_F(HostEdits, AnInsertedCyclicReadIsServedInItsPlace)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    serve();

    state.readList.insert(1, variable(2, "SW", 0, 1, 4));

    EXPECT_EQ(serveTimes(4), (Served { "4 1 D 5 1", "4 2 SW 0 1", "4 1 D 0 1", "4 1 D 5 1" }));
}

TEST_F(HostEdits, TheHeadAtTheTimeOfTheReplyMovesToTheTail)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    nextFrame();
    state.readList.prepend(variable(2, "SW", 0, 1, 4));

    answer({ 0 });

    EXPECT_EQ(text(state.readList), "1 D 0 1; 1 D 5 1; 2 SW 0 1");
}

TEST_F(HostEdits, AWriteThatTheHostAppendsIsSentAndSettled)
{
    VARIABLE write = variable(1, "F", 5, 1);
    write.data[0] = 0x34;
    write.data[1] = 0x12;
    state.writeList.append(write);

    EXPECT_EQ(nextFrame(), "01 06 F0 05 12 34 A7 BC");
    EXPECT_EQ(echo(), 1);
    EXPECT_EQ(cacheKeys(), "1 F 5");
    EXPECT_EQ(text(state.writeList), "");
}

TEST_F(HostEdits, AWriteReplacesAnEqualOneThatTheHostMovedBehindTheHead)
{
    set(1, "F", 5, { 0x11 });
    set(1, "F", 6, { 0x22 });
    std::reverse(state.writeList.begin(), state.writeList.end());

    set(1, "F", 5, { 0x33 });

    EXPECT_EQ(text(state.writeList), "1 F 6 1; 1 F 5 1");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 2), "33 00");
}

TEST_F(HostEdits, AnEditedWriteIsNoLongerReplaced)
{
    set(1, "F", 0, { 0x11 });
    set(1, "F", 5, { 0x22 });
    state.writeList[1].address = 7;

    set(1, "F", 5, { 0x33 });

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 7 1; 1 F 5 1");
}

TEST_F(HostEdits, AnEditedConditionReadIsNoLongerFolded)
{
    readOnce(1, "D", 0, 1);
    readOnce(1, "D", 5, 1);
    state.conditionList[1].count = 2;

    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 5, 2, 0, 9);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 5 2; 1 D 5 1");
    EXPECT_EQ(state.conditionList.at(1).varKind, 9);
}

TEST_F(HostEdits, AClearedWriteListMakesTheNextWriteTheHead)
{
    set(1, "F", 0, { 0x11 });
    set(1, "F", 5, { 0x22 });
    state.writeList.clear();

    set(1, "F", 5, { 0x33 });

    EXPECT_EQ(text(state.writeList), "1 F 5 1");
    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 33 EA DE");
}

TEST_F(HostEdits, AShortenedFullListTakesNewEntriesAgain)
{
    for (int i = 0; i < 513; ++i)
        set(1, "F", i, { 1 });
    while (state.writeList.size() > 2)
        state.writeList.removeLast();

    set(1, "F", 900, { 1 });

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 1 1; 1 F 900 1");
}

TEST_F(HostEdits, ClearedFramesLeaveNoRequest)
{
    readOnce(1, "D", 5, 1);
    nextFrame();

    state.sendFrames.clear();

    EXPECT_EQ(answer({ 1 }), 0);
    EXPECT_EQ(text(state.conditionList), "1 D 5 1");
    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");
}

TEST_F(HostEdits, ReplacedFramesAreSentAndAnswered)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    FRAME_PRO other = state.sendFrames.at(0);
    other.frame[1] = 0x04;
    other.replyLength = 9;
    other.replyDataLength = 4;
    other.var = variable(1, "FU", 0, 2);

    state.sendFrames = { other };

    EXPECT_EQ(nextFrame().substr(0, 5), "01 04");
    EXPECT_EQ(answer({ 0x11, 0x22 }), 1);
    EXPECT_EQ(data(1, "FU", 0, 2), "11 00 22 00");
}

TEST_F(HostEdits, EditedSettingsCountAtOnce)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    state.retryLimit = 3;
    state.writeBlockSize = 2;
    state.linkId = 8;
    record(1, "F", 0).flags = 1;

    set(1, "F", 0, { 1, 2, 3 });

    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(text(state.writeList), "1 F 0 2; 1 F 2 1");
    EXPECT_EQ(calls, (Calls { "8 1 F 0" }));
}
