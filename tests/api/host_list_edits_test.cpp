// SPDX-License-Identifier: MIT
// A host that edits and snapshots the request lists, the frames and the settings between calls.
#include "cycle_fixture.h"

#include <algorithm>

using Calls = std::vector<std::string>;
using Served = std::vector<std::string>;

namespace {

class HostListEdits : public CycleFixture {
protected:
    HostListEdits() { init("1#0#0#1#10"); }
};

} // namespace

TEST_F(HostListEdits, SnapshotsOfTheRequestListsNeverChange)
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

TEST_F(HostListEdits, ASnapshotOfTheFramesNeverChanges)
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

TEST_F(HostListEdits, TheFrameHandedOutIsACopy)
{
    readOnce(1, "D", 5, 1);
    nextFrame();

    frame.frame[0] = 0x77;
    frame.var.address = 99;

    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");
    EXPECT_EQ(text(frame.var), "1 D 5 1");
}

TEST_F(HostListEdits, AClearedReadListEndsPolling)
{
    merge({ keyAddress(1, "D", 0, 1) });

    state.readList.clear();

    EXPECT_EQ(nextFrame(), "");
}

TEST_F(HostListEdits, AnInsertedCyclicReadIsServedInItsPlace)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    serve();

    state.readList.insert(1, variable(2, "SW", 0, 1, 4));

    EXPECT_EQ(serveTimes(4), (Served { "4 1 D 5 1", "4 2 SW 0 1", "4 1 D 0 1", "4 1 D 5 1" }));
}

TEST_F(HostListEdits, TheHeadAtTheTimeOfTheReplyMovesToTheTail)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    nextFrame();
    state.readList.prepend(variable(2, "SW", 0, 1, 4));

    answer({ 0 });

    EXPECT_EQ(text(state.readList), "1 D 0 1; 1 D 5 1; 2 SW 0 1");
}

TEST_F(HostListEdits, AWriteThatTheHostAppendsIsSentAndSettled)
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

TEST_F(HostListEdits, AWriteReplacesAnEqualOneThatTheHostMovedBehindTheHead)
{
    set(1, "F", 5, { 0x11 });
    set(1, "F", 6, { 0x22 });
    std::reverse(state.writeList.begin(), state.writeList.end());

    set(1, "F", 5, { 0x33 });

    EXPECT_EQ(text(state.writeList), "1 F 6 1; 1 F 5 1");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 2), "33 00");
}

TEST_F(HostListEdits, AnEditedWriteIsNoLongerReplaced)
{
    set(1, "F", 0, { 0x11 });
    set(1, "F", 5, { 0x22 });
    state.writeList[1].address = 7;

    set(1, "F", 5, { 0x33 });

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 7 1; 1 F 5 1");
}

TEST_F(HostListEdits, AnEditedConditionReadIsNoLongerFolded)
{
    readOnce(1, "D", 0, 1);
    readOnce(1, "D", 5, 1);
    state.conditionList[1].count = 2;

    readOnce(1, "D", 5, 1);
    readOnce(1, "D", 5, 2, 0, 9);

    EXPECT_EQ(text(state.conditionList), "1 D 0 1; 1 D 5 2; 1 D 5 1");
    EXPECT_EQ(state.conditionList.at(1).varKind, 9);
}

TEST_F(HostListEdits, AClearedWriteListMakesTheNextWriteTheHead)
{
    set(1, "F", 0, { 0x11 });
    set(1, "F", 5, { 0x22 });
    state.writeList.clear();

    set(1, "F", 5, { 0x33 });

    EXPECT_EQ(text(state.writeList), "1 F 5 1");
    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 33 EA DE");
}

TEST_F(HostListEdits, AShortenedFullListTakesNewEntriesAgain)
{
    for (int i = 0; i < 513; ++i)
        set(1, "F", i, { 1 });
    while (state.writeList.size() > 2)
        state.writeList.removeLast();

    set(1, "F", 900, { 1 });

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 1 1; 1 F 900 1");
}

TEST_F(HostListEdits, ClearedFramesLeaveNoRequest)
{
    readOnce(1, "D", 5, 1);
    nextFrame();

    state.sendFrames.clear();

    EXPECT_EQ(answer({ 1 }), 0);
    EXPECT_EQ(text(state.conditionList), "1 D 5 1");
    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");
}

TEST_F(HostListEdits, ReplacedFramesAreSentAndAnswered)
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

TEST_F(HostListEdits, EditedSettingsCountAtOnce)
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
