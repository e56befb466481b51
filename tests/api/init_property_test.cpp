// SPDX-License-Identifier: MIT
// The settings text of a link, and what a start resets and keeps.
#include "driver_fixture.h"

#include <ostream>

namespace {

struct SettingsRow {
    const char *name;
    const char *text;
    int linkId;
    int writesLocalOnly;
    int property2;
    int retryLimit;
    int blockSize;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const SettingsRow &row, std::ostream *out)
{
    *out << row.name;
}

// Qt 5 skips every kind of blank around a number, Qt 6 only those of ASCII.
constexpr int skippedNoBreakSpace = QT_VERSION < QT_VERSION_CHECK(6, 0, 0) ? 1 : 0;

// Every row starts from a link with the settings 21, 22, 23, 24, 25.
class LinkSettings : public DriverFixture, public ::testing::WithParamInterface<SettingsRow> { };

TEST_P(LinkSettings, AreTakenFromTheText)
{
    const SettingsRow &row = GetParam();
    init("21#22#23#24#25");

    init(row.text);

    EXPECT_EQ(state.linkId, row.linkId);
    EXPECT_EQ(state.writesLocalOnly, row.writesLocalOnly);
    EXPECT_EQ(state.property2, row.property2);
    EXPECT_EQ(state.retryLimit, row.retryLimit);
    EXPECT_EQ(state.blockSize, row.blockSize);
}

std::string rowName(const ::testing::TestParamInfo<SettingsRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    PropertyText, LinkSettings,
    ::testing::Values(
        SettingsRow { "FiveFieldsSetTheFiveMembers", "1#0#0#3#16", 1, 0, 0, 3, 16 },
        SettingsRow { "EachFieldHasItsOwnMember", "1#2#3#4#5", 1, 2, 3, 4, 5 },
        SettingsRow { "FourFieldsChangeNone", "1#0#0#3", 21, 22, 23, 24, 25 },
        SettingsRow { "OneFieldChangesNone", "1", 21, 22, 23, 24, 25 },
        SettingsRow { "EmptyTextChangesNone", "", 21, 22, 23, 24, 25 },
        SettingsRow { "NullTextCountsAsEmpty", nullptr, 21, 22, 23, 24, 25 },
        SettingsRow { "SeparatorsOfAnotherKindChangeNone", "1,0,0,3,16", 21, 22, 23, 24, 25 },
        SettingsRow { "EmptyFieldIsZero", "1##0#3#16", 1, 0, 0, 3, 16 },
        SettingsRow { "FourSeparatorsAloneAreFiveZeros", "####", 0, 0, 0, 0, 0 },
        SettingsRow { "FieldsBeyondTheFifthAreIgnored", "1#0#2#3#16#98#99", 1, 0, 2, 3, 16 },
        SettingsRow { "TrailingSeparatorIsASixthField", "1#0#2#3#16#", 1, 0, 2, 3, 16 },
        SettingsRow { "TextThatIsNoNumberIsZero", "one#0#2#3#16", 0, 0, 2, 3, 16 },
        SettingsRow { "NumberWithATailIsZero", "1#0#2#3x#16", 1, 0, 2, 0, 16 },
        SettingsRow { "FractionIsZero", "1.5#0#2#3#16", 0, 0, 2, 3, 16 },
        SettingsRow { "HexadecimalIsZero", "0x10#0#2#3#16", 0, 0, 2, 3, 16 },
        SettingsRow { "LeadingZerosStayDecimal", "010#0#2#003#016", 10, 0, 2, 3, 16 },
        SettingsRow { "BlanksAroundANumberAreSkipped", " 1 # 0# 2# 3 #\t16", 1, 0, 2, 3, 16 },
        SettingsRow { "BlankInsideANumberIsZero", "1#0#2#3#1 6", 1, 0, 2, 3, 0 },
        SettingsRow { "OneSignIsRead", "+1#-1#2#-3#+16", 1, -1, 2, -3, 16 },
        SettingsRow { "TwoSignsAreZero", "--1#0#2#3#16", 0, 0, 2, 3, 16 },
        SettingsRow { "LargestNumberIsRead", "2147483647#0#2#3#16", 2147483647, 0, 2, 3, 16 },
        SettingsRow { "NumberAboveTheLargestIsZero", "2147483648#0#2#3#16", 0, 0, 2, 3, 16 },
        SettingsRow { "TextIsReadAsLatin1",
                      "\xA0"
                      "1#0#2#3#16",
                      skippedNoBreakSpace, 0, 2, 3, 16 },
        SettingsRow { "DigitsBeyondAsciiAreZero", "\xB2#0#2#3#16", 0, 0, 2, 3, 16 }),
    rowName);

class InitProperty : public DriverFixture {
protected:
    /// Puts something into every member that a start empties, zeroes or keeps.
    void fillState();
};

void InitProperty::fillState()
{
    VARIABLE variable;
    variable.station = 9;
    variable.regType = QStringLiteral("D");
    state.readList.append(variable);
    state.writeList.append(variable);
    state.conditionList.append(variable);
    state.dataAreas.append(_DATA_());
    state.sendFrames.append(FRAME_PRO());
    state.rcpVars.append(recipeVar(1, 2, "F", 3, 4, 5));
    state.rcpSendVars.append(recipeVar(6, 7, "F", 8, 9, 10));
    state.mergeIndexList.append(11);
    state.conditionVar = variable;
    state.curVar = variable;
    state.curVar.station = 10;
    state.phase = 2;
    state.tryCount = 3;
    state.spare1 = 4;
    state.failCount = 5;
    state.lastFailed = 1;
    state.spare2 = 6;
    state.spare3 = 7;
    state.rcpIndex = 8;
}

TEST_F(InitProperty, AnswersOneAndWritesZero)
{
    int result = 77;

    const int answer =
        dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), &result, "1#0#0#3#16", &mutex);

    EXPECT_EQ(answer, 1);
    EXPECT_EQ(result, 0);
}

TEST_F(InitProperty, AnswersOneAndWritesZeroForAMalformedText)
{
    int result = 77;

    const int answer =
        dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), &result, "?", &mutex);

    EXPECT_EQ(answer, 1);
    EXPECT_EQ(result, 0);
}

TEST_F(InitProperty, NullResultIsNotWritten)
{
    const int answer =
        dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), nullptr, "1#0#0#3#16", &mutex);

    EXPECT_EQ(answer, 1);
    EXPECT_EQ(state.linkId, 1);
}

TEST_F(InitProperty, BlockSizeGivesTheSplitLimits)
{
    init("1#0#0#3#16");

    EXPECT_EQ(state.linkId, 1);
    EXPECT_EQ(state.retryLimit, 3);
    EXPECT_EQ(state.blockSize, 16);
    EXPECT_EQ(state.writeBlockSize, 16);
    EXPECT_EQ(state.bitBlockSize, 128);
}

TEST_F(InitProperty, FourFieldsOnTheFirstCallLeaveZeros)
{
    init("1#2#3#4");

    EXPECT_EQ(state.linkId, 0);
    EXPECT_EQ(state.writesLocalOnly, 0);
    EXPECT_EQ(state.property2, 0);
    EXPECT_EQ(state.retryLimit, 0);
    EXPECT_EQ(state.blockSize, 0);
    EXPECT_EQ(state.writeBlockSize, 0);
    EXPECT_EQ(state.bitBlockSize, 0);
    EXPECT_EQ(state.spare3, 1);
}

TEST_F(InitProperty, FourFieldsTakeTheSplitLimitsFromTheBlockSizeKept)
{
    init("1#0#0#3#16");
    state.writeBlockSize = 99;
    state.bitBlockSize = 99;

    init("1#0#0#3");

    EXPECT_EQ(state.writeBlockSize, 16);
    EXPECT_EQ(state.bitBlockSize, 128);
}

TEST_F(InitProperty, NegativeBlockSizeIsMultipliedAsItStands)
{
    init("1#0#0#3#-2");

    EXPECT_EQ(state.writeBlockSize, -2);
    EXPECT_EQ(state.bitBlockSize, -16);
}

TEST_F(InitProperty, EightfoldBlockSizeWrapsAt32Bits)
{
    init("1#0#0#3#2147483647");

    EXPECT_EQ(state.writeBlockSize, 2147483647);
    EXPECT_EQ(state.bitBlockSize, -8);
}

TEST_F(InitProperty, StoresWhatTheHostHandsOver)
{
    int result = 77;

    dx4.initProperty(hostBlock.data(), -42, recipeBuffer.data(), &result, "1#0#0#3#16", &mutex);

    EXPECT_EQ(state.hostBlock, hostBlock.data());
    EXPECT_EQ(state.hostParam, -42);
    EXPECT_EQ(state.recipeBuffer, recipeBuffer.data());
    EXPECT_EQ(state.hostMutex, &mutex);
}

TEST_F(InitProperty, StoresNullPointersInPlaceOfEarlierOnes)
{
    init();

    dx4.initProperty(nullptr, 0, nullptr, nullptr, nullptr, nullptr);

    EXPECT_EQ(state.hostBlock, nullptr);
    EXPECT_EQ(state.recipeBuffer, nullptr);
    EXPECT_EQ(state.hostMutex, nullptr);
}

TEST_F(InitProperty, EmptiesListsAndZeroesCounters)
{
    fillState();

    init("1#0#0#3#16");

    EXPECT_TRUE(state.readList.isEmpty());
    EXPECT_TRUE(state.writeList.isEmpty());
    EXPECT_TRUE(state.conditionList.isEmpty());
    EXPECT_TRUE(state.dataAreas.isEmpty());
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_EQ(state.phase, 0);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(state.spare1, 0);
    EXPECT_EQ(state.failCount, 0);
    EXPECT_EQ(state.lastFailed, 0);
    EXPECT_EQ(state.spare2, 0);
    EXPECT_EQ(state.spare3, 1);
}

TEST_F(InitProperty, FourFieldsStillResetListsAndCounters)
{
    fillState();

    const int answer =
        dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), nullptr, "1#0#0#3", &mutex);

    EXPECT_EQ(answer, 1);
    EXPECT_TRUE(state.readList.isEmpty());
    EXPECT_TRUE(state.writeList.isEmpty());
    EXPECT_TRUE(state.conditionList.isEmpty());
    EXPECT_TRUE(state.dataAreas.isEmpty());
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_EQ(state.phase, 0);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(state.failCount, 0);
    EXPECT_EQ(state.lastFailed, 0);
    EXPECT_EQ(state.spare3, 1);
}

TEST_F(InitProperty, KeepsRecipesAndTheVariableServedLast)
{
    fillState();

    init("1#0#0#3#16");

    ASSERT_EQ(state.rcpVars.size(), 1);
    EXPECT_EQ(state.rcpVars.at(0).bufferOffset, 5);
    ASSERT_EQ(state.rcpSendVars.size(), 1);
    EXPECT_EQ(state.rcpSendVars.at(0).bufferOffset, 10);
    ASSERT_EQ(state.mergeIndexList.size(), 1);
    EXPECT_EQ(state.mergeIndexList.at(0), 11);
    EXPECT_EQ(state.conditionVar.station, 9);
    EXPECT_EQ(state.conditionVar.regType.toStdString(), "D");
    EXPECT_EQ(state.curVar.station, 10);
    EXPECT_EQ(state.rcpIndex, 8);
    EXPECT_EQ(state.regTypeList.size(), 6);
}

TEST_F(InitProperty, SecondStartForgetsValuesAndRequests)
{
    init();
    set(1, "F", 5, { 0x1234 });
    ASSERT_EQ(nextFrame(), "01 06 F0 05 12 34 A7 BC");

    init();

    EXPECT_EQ(nextFrame(), "");
    EXPECT_EQ(data(1, "F", 5, 1), "00 00");
}

TEST_F(InitProperty, CallsNobodyBack)
{
    init();
    set(1, "F", 5, { 0x1234 });
    calls.clear();

    init();

    EXPECT_TRUE(calls.empty());
}

TEST_F(InitProperty, LeavesTheHostBlockAlone)
{
    hostBlock[60115] = 1;
    hostBlock[60116] = 1;

    init();

    EXPECT_EQ(hostBlock[60115], 1);
    EXPECT_EQ(hostBlock[60116], 1);
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

} // namespace
