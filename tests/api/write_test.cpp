// SPDX-License-Identifier: MIT
// Writes: shown at once, split, queued, replaced, settled.
#include "cycle_fixture.h"

#include <climits>
#include <tuple>

using Calls = std::vector<std::string>;

namespace {

class Writes : public CycleFixture {
protected:
    Writes() { init("1#0#0#1#4"); }

    /// Fills the list with this many distinct writes "1 F 1000+i 1".
    void fill(int entries)
    {
        for (int i = 0; i < entries; ++i)
            state.writeList.append(variable(1, "F", 1000 + i, 1));
    }

    /// intf_setData with a count of its own; the data are 0x01, 0x02, ... as bytes.
    int setCount(int address, int count)
    {
        std::vector<unsigned char> bytes(64);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i + 1);
        return dx4.setData(1, QStringLiteral("F"), address, count, bytes.data(), 0);
    }
};

struct Split {
    const char *name;
    const char *property;
    int address;
    int count;
    const char *expected;
};

class WriteSplits : public Writes, public ::testing::WithParamInterface<Split> { };

} // namespace

TEST_P(WriteSplits, QueueTheRequests)
{
    init(GetParam().property);

    const int result = setCount(GetParam().address, GetParam().count);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(text(state.writeList), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, WriteSplits,
    ::testing::Values(
        Split { "OneBelowTheLimit", "1#0#0#3#4", 5, 3, "1 F 5 3" },
        Split { "TheLimit", "1#0#0#3#4", 5, 4, "1 F 5 4" },
        Split { "OneAboveTheLimit", "1#0#0#3#4", 5, 5, "1 F 5 4; 1 F 9 1" },
        Split { "TwoFullRequests", "1#0#0#3#4", 5, 8, "1 F 5 4; 1 F 9 4" },
        Split { "TwoFullRequestsAndARest", "1#0#0#3#4", 5, 10, "1 F 5 4; 1 F 9 4; 1 F 13 2" },
        Split { "CountZero", "1#0#0#3#4", 5, 0, "" },
        Split { "NegativeCountAboveTheLimit", "1#0#0#3#4", 5, -3, "1 F 5 -3" },
        Split { "NegativeCountOfOne", "1#0#0#3#4", 5, -1, "1 F 5 -1" },
        Split { "NegativeCountOfTheLimit", "1#0#0#3#4", 5, -4, "" },
        Split { "NegativeCountPastTheLimit", "1#0#0#3#4", 5, -5, "" },
        Split { "NegativeCountOfTwiceTheLimit", "1#0#0#3#4", 5, -8, "" },
        Split { "LimitZeroCountsAsOne", "1#0#0#3#0", 5, 3, "1 F 5 1; 1 F 6 1; 1 F 7 1" },
        Split { "LimitBelowZeroWithALongerCount", "1#0#0#3#-4", 5, 10, "" },
        Split { "LimitBelowZeroWithAShorterCount", "1#0#0#3#-4", 5, 3, "1 F 5 3" },
        Split { "LimitAndCountBelowZero", "1#0#0#3#-4", 5, -10, "1 F 5 -4; 1 F 1 -4; 1 F -3 -2" },
        Split { "AddressesWrap", "1#0#0#3#4", 2147483645, 6,
                "1 F 2147483645 4; 1 F -2147483647 2" }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(Writes, GiveEachRequestItsOwnDataAndZerosBehind)
{
    setCount(5, 10);

    ASSERT_EQ(state.writeList.size(), 3);
    EXPECT_EQ(toHex(state.writeList.at(0).data, 10), "01 02 03 04 05 06 07 08 00 00");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 10), "09 0A 0B 0C 0D 0E 0F 10 00 00");
    EXPECT_EQ(toHex(state.writeList.at(2).data, 10), "11 12 13 14 00 00 00 00 00 00");
    for (int i = 10; i < 1024; ++i)
        ASSERT_EQ(state.writeList.at(2).data[i], 0);
}

TEST_F(Writes, OfANegativeCountShowNothingAndCarryNoData)
{
    setCount(5, -3);

    ASSERT_EQ(text(state.writeList), "1 F 5 -3");
    EXPECT_EQ(toHex(state.writeList.at(0).data, 4), "00 00 00 00");
    EXPECT_EQ(cacheKeys(), "");
    EXPECT_EQ(calls, Calls {});
}

TEST_F(Writes, OfACountBelowOneThatQueueNothingShowNothing)
{
    setCount(5, 0);
    setCount(5, -4);

    EXPECT_EQ(text(state.writeList), "");
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Writes, OfTheLowestCountKeepTheListBoundedAndShowNothing)
{
    init("1#0#0#1#-1");

    EXPECT_EQ(setCount(5, INT_MIN), 1);
    EXPECT_LE(state.writeList.size(), 513);
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Writes, CarryTheHostsKind)
{
    set(1, "F", 5, { 1, 2, 3, 4, 5 }, 33);

    EXPECT_EQ(state.writeList.at(0).varKind, 33);
    EXPECT_EQ(state.writeList.at(1).varKind, 33);
}

TEST_F(Writes, CopyNoMoreThanTheDataOfAVariable)
{
    init("1#0#0#1#600");
    std::vector<unsigned char> bytes(1200, 0x5A);

    dx4.setData(1, QStringLiteral("F"), 5, 600, bytes.data(), 0);

    EXPECT_EQ(text(state.writeList), "1 F 5 600");
    EXPECT_EQ(toHex(state.writeList.at(0).data + 1020, 4), "5A 5A 5A 5A");
    EXPECT_EQ(data(1, "F", 604, 1), "5A 5A");
}

TEST_F(Writes, WithoutDataDoNothing)
{
    EXPECT_EQ(dx4.setData(1, QStringLiteral("F"), 5, 1, nullptr, 0), 1);
    EXPECT_EQ(text(state.writeList), "");
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Writes, ShowTheValueAtOnce)
{
    set(1, "F", 5, { 0x1234, 0x5678 });

    EXPECT_EQ(data(1, "F", 5, 2), "34 12 78 56");
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(toHex(record(1, "F", 5).writeValue, 4), "34 12 00 00");
    EXPECT_EQ(toHex(record(1, "F", 5).value, 4), "00 00 00 00");
    EXPECT_EQ(record(1, "F", 6).writePending, 1);
}

TEST_F(Writes, ReportEachChangedRegisterInOrder)
{
    merge({ keyAddress(1, "F", 5, 6) });

    set(1, "F", 5, { 1, 0, 3, 4, 5, 6 });

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 7", "1 1 F 8", "1 1 F 9", "1 1 F 10" }));
}

TEST_F(Writes, ReportBeforeTheShownValueChanges)
{
    merge({ keyAddress(1, "F", 5, 2) });
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "F", 5, 2)); };

    set(1, "F", 5, { 0x0011, 0x0022 });

    EXPECT_EQ(seen, (Calls { "00 00 00 00", "11 00 00 00" }));
    EXPECT_EQ(data(1, "F", 5, 2), "11 00 22 00");
}

TEST_F(Writes, AreQueuedBeforeTheyAreReported)
{
    merge({ keyAddress(1, "F", 5, 5) });
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(text(state.writeList)); };

    set(1, "F", 5, { 9, 0, 0, 0, 0 });

    EXPECT_EQ(seen, (Calls { "1 F 5 4; 1 F 9 1" }));
}

TEST_F(Writes, OfTheShownValueReportNothingButArePending)
{
    merge({ keyAddress(1, "F", 5, 1) });
    nextFrame();
    answer({ 0x1234 });
    calls.clear();

    set(1, "F", 5, { 0x1234 });

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(text(state.writeList), "1 F 5 1");
}

TEST_F(Writes, CompareWithThePendingValue)
{
    merge({ keyAddress(1, "F", 5, 1) });
    set(1, "F", 5, { 7 });
    calls.clear();

    set(1, "F", 5, { 7 });
    EXPECT_EQ(calls, Calls {});

    set(1, "F", 5, { 0 });
    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
}

TEST_F(Writes, ThatStayLocalQueueNothingButShowAndReport)
{
    init("1#1#0#1#4");
    record(1, "F", 5).flags = 1;

    set(1, "F", 5, { 0x1234 });

    EXPECT_EQ(text(state.writeList), "");
    EXPECT_EQ(data(1, "F", 5, 1), "34 12");
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
    EXPECT_EQ(nextFrame(), "");
}

TEST_F(Writes, StayLocalForAnyValueButZero)
{
    init("1#-7#0#1#4");

    set(1, "F", 5, { 0x1234 });

    EXPECT_EQ(text(state.writeList), "");
}

TEST_F(Writes, OfTheSameRegistersReplaceTheOneThatWaits)
{
    set(1, "F", 0, { 1 });
    set(1, "F", 5, { 0x0011 }, 1);
    set(1, "F", 9, { 3 });

    set(1, "F", 5, { 0x0022 }, 2);

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 5 1; 1 F 9 1");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 4), "22 00 00 00");
    EXPECT_EQ(state.writeList.at(1).varKind, 2);
}

TEST_F(Writes, KeepTheHeadOfTheList)
{
    set(1, "F", 5, { 0x0011 });

    set(1, "F", 5, { 0x0022 });

    EXPECT_EQ(text(state.writeList), "1 F 5 1; 1 F 5 1");
    EXPECT_EQ(toHex(state.writeList.at(0).data, 2), "11 00");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 2), "22 00");
    EXPECT_EQ(data(1, "F", 5, 1), "22 00");
}

TEST_F(Writes, AfterTheHeadReplaceTheSecond)
{
    set(1, "F", 5, { 0x0011 });
    set(1, "F", 5, { 0x0022 });

    set(1, "F", 5, { 0x0033 });

    EXPECT_EQ(text(state.writeList), "1 F 5 1; 1 F 5 1");
    EXPECT_EQ(toHex(state.writeList.at(0).data, 2), "11 00");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 2), "33 00");
}

TEST_F(Writes, ReplaceTheLastOfSeveralEqualOnes)
{
    state.writeList = { variable(1, "F", 0, 1), variable(1, "F", 5, 1, 1),
                        variable(1, "F", 5, 1, 2), variable(1, "F", 6, 1) };

    set(1, "F", 5, { 1 }, 9);

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 5 1; 1 F 5 1; 1 F 6 1");
    EXPECT_EQ(state.writeList.at(1).varKind, 1);
    EXPECT_EQ(state.writeList.at(2).varKind, 9);
}

TEST_F(Writes, AreDifferentWhenAnyPartOfTheKeyDiffers)
{
    set(1, "F", 0, { 1 });
    set(1, "F", 5, { 1 });

    set(2, "F", 5, { 1 });
    set(1, "D", 5, { 1 });
    set(1, "F", 6, { 1 });
    set(1, "F", 5, { 1, 2 });

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 5 1; 2 F 5 1; 1 D 5 1; 1 F 6 1; 1 F 5 2");
}

TEST_F(Writes, EachRequestIsReplacedByItself)
{
    set(1, "F", 0, { 1 });
    set(1, "F", 9, { 1, 1, 1, 1 });

    set(1, "F", 5, { 2, 2, 2, 2, 3, 3, 3, 3 });

    EXPECT_EQ(text(state.writeList), "1 F 0 1; 1 F 9 4; 1 F 5 4");
    EXPECT_EQ(toHex(state.writeList.at(1).data, 8), "03 00 03 00 03 00 03 00");
}

TEST_F(Writes, With512EntriesANewOneIsAppended)
{
    fill(512);

    set(1, "F", 5, { 1 });

    EXPECT_EQ(state.writeList.size(), 513);
    EXPECT_EQ(text(state.writeList.last()), "1 F 5 1");
    EXPECT_EQ(text(state.writeList.at(511)), "1 F 1511 1");
}

TEST_F(Writes, With513EntriesANewOneOverwritesEntry512)
{
    fill(513);

    set(1, "F", 5, { 1 });

    EXPECT_EQ(state.writeList.size(), 513);
    EXPECT_EQ(text(state.writeList.at(512)), "1 F 5 1");
    EXPECT_EQ(text(state.writeList.at(511)), "1 F 1511 1");
}

TEST_F(Writes, AFullListStillReplacesEqualOnes)
{
    fill(513);

    set(1, "F", 1300, { 0x0042 });

    EXPECT_EQ(state.writeList.size(), 513);
    EXPECT_EQ(toHex(state.writeList.at(300).data, 2), "42 00");
    EXPECT_EQ(text(state.writeList.at(512)), "1 F 1512 1");
}

// Position of the entry, and registers in a request.
class WaitingPiece : public Writes, public ::testing::WithParamInterface<std::tuple<int, int>> { };

// Of a run that a full list has no room for, the pieces that wait already are renewed where they
// stand and the others replace the last entry, one after the other.
TEST_P(WaitingPiece, IsRenewedInAFullListWhereverItStands)
{
    const auto [position, registers] = GetParam();
    const std::string size = std::to_string(registers);
    init(("1#0#0#1#" + size).c_str());
    fill(513);
    state.writeList[position] = variable(1, "F", 5000 + registers, registers);

    setCount(5000, 3 * registers);

    ASSERT_EQ(state.writeList.size(), 513);
    const VARIABLE &renewed = state.writeList.at(position);
    EXPECT_EQ(text(renewed), "1 F " + std::to_string(5000 + registers) + ' ' + size);
    EXPECT_EQ(renewed.data[0], 2 * registers + 1);
    const VARIABLE &last = state.writeList.at(512);
    EXPECT_EQ(text(last), "1 F " + std::to_string(5000 + 2 * registers) + ' ' + size);
    EXPECT_EQ(last.data[0], 4 * registers + 1);
}

INSTANTIATE_TEST_SUITE_P(Positions, WaitingPiece,
                         ::testing::Combine(::testing::Values(1, 2, 300, 510, 511),
                                            ::testing::Values(1, 2, 4)));

TEST_F(Writes, ThePieceBehindARenewedOneReplacesTheLastEntry)
{
    init("1#0#0#1#1");
    fill(513);
    state.writeList[300].address = 5000;

    set(1, "F", 5000, { 0x0A, 0x0B });

    EXPECT_EQ(state.writeList.at(300).data[0], 0x0A);
    EXPECT_EQ(text(state.writeList.at(512)), "1 F 5001 1");
}

TEST_F(Writes, ThePieceBeforeARenewedOneReplacesTheLastEntry)
{
    init("1#0#0#1#1");
    fill(513);
    state.writeList[300].address = 5002;

    set(1, "F", 5000, { 0x0A, 0x0B, 0x0C });

    EXPECT_EQ(state.writeList.at(300).data[0], 0x0C);
    EXPECT_EQ(text(state.writeList.at(512)), "1 F 5001 1");
}

TEST_F(Writes, TheListNeverGrowsPast513Entries)
{
    for (int i = 0; i < 600; ++i)
        set(1, "F", i, { 1 });

    EXPECT_EQ(state.writeList.size(), 513);
    EXPECT_EQ(text(state.writeList.at(511)), "1 F 511 1");
    EXPECT_EQ(text(state.writeList.at(512)), "1 F 599 1");
}

namespace {

class WrittenTypes : public Writes, public ::testing::WithParamInterface<const char *> { };
class RefusedTypes : public Writes, public ::testing::WithParamInterface<const char *> { };

} // namespace

TEST_P(WrittenTypes, AreQueuedAndShown)
{
    set(1, GetParam(), 0, { 0x1234 });

    EXPECT_EQ(state.writeList.size(), 1);
    EXPECT_EQ(data(1, GetParam(), 0, 1), "34 12");
}

INSTANTIATE_TEST_SUITE_P(Types, WrittenTypes, ::testing::Values("F", "D", "CW", "SW", "FRE", "FU"));

TEST_P(RefusedTypes, AreNeitherQueuedNorShown)
{
    unsigned char bytes[2] = { 1, 2 };

    EXPECT_EQ(dx4.setData(1, QString::fromLatin1(GetParam()), 0, 1, bytes, 0), 1);
    EXPECT_EQ(text(state.writeList), "");
    EXPECT_EQ(cacheKeys(), "");
}

INSTANTIATE_TEST_SUITE_P(Types, RefusedTypes, ::testing::Values("X", "f", "", "RWI", "cw"));
