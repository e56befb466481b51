// SPDX-License-Identifier: MIT
// Which replies are accepted, which are tried again, and when a request is given up.
#include "reply_fixture.h"

using Calls = std::vector<std::string>;

TEST_F(Replies, WithoutARequestReturnZeroAndAnEmptyErrorText)
{
    errorText = QStringLiteral("old");

    EXPECT_EQ(reply("01 03 02 12 34 B5 33"), 0);
    EXPECT_EQ(errorText, QString());
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Replies, ThatAreEmptyWithoutARequestReturnZero)
{
    EXPECT_EQ(silence(), 0);
    EXPECT_EQ(state.failCount, 0);
}

TEST_F(Replies, AreAcceptedByLengthAndCrc)
{
    requestConditionRead(7, 1);

    EXPECT_EQ(reply("01 03 02 12 34 B5 33"), 1);
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_EQ(data(1, "D", 7, 1), "34 12");
}

namespace {

struct Bytes {
    const char *name;
    const char *hex;
};

class AcceptedReplies : public Replies, public ::testing::WithParamInterface<Bytes> { };
class BadReplies : public Replies, public ::testing::WithParamInterface<Bytes> { };

std::string nameOf(const ::testing::TestParamInfo<Bytes> &info)
{
    return info.param.name;
}

} // namespace

TEST_P(AcceptedReplies, BelongToTheRequestWhateverTheirHeader)
{
    requestConditionRead(7, 1);

    EXPECT_EQ(reply(GetParam().hex), 1);
    EXPECT_EQ(data(1, "D", 7, 1), "34 12");
    EXPECT_EQ(cacheKeys(), "1 D 7");
}

INSTANTIATE_TEST_SUITE_P(Headers, AcceptedReplies,
                         ::testing::Values(Bytes { "AnotherStation", "09 03 02 12 34 54 F2" },
                                           Bytes { "AnotherFunction", "01 10 02 12 34 B1 B7" },
                                           Bytes { "ExceptionBit", "01 83 02 12 34 9C F3" },
                                           Bytes { "AnotherByteCount", "01 03 FF 12 34 24 C3" }),
                         nameOf);

TEST_P(BadReplies, KeepTheFrameForAnotherTry)
{
    requestConditionRead(7, 1);

    EXPECT_EQ(reply(GetParam().hex), 8);
    EXPECT_EQ(state.failCount, 1);
    EXPECT_EQ(state.lastFailed, 0);
    EXPECT_EQ(nextFrame(), "01 03 D0 07 00 01 0D 0B");
    EXPECT_EQ(text(state.conditionList), "1 D 7 1");
    EXPECT_EQ(cacheKeys(), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, BadReplies,
                         ::testing::Values(Bytes { "Silence", "" }, Bytes { "OneByte", "01" },
                                           Bytes { "TwoBytesOfCrcStart", "FF FF" },
                                           Bytes { "OneByteShort", "01 03 02 12 70 B5" },
                                           Bytes { "OneByteLong", "01 03 02 12 34 56 72 89" },
                                           Bytes { "LowCrcByteAltered", "01 03 02 12 34 B4 33" },
                                           Bytes { "HighCrcByteAltered", "01 03 02 12 34 B5 32" },
                                           Bytes { "CrcBytesSwapped", "01 03 02 12 34 33 B5" },
                                           Bytes { "DataAltered", "01 03 02 12 35 B5 33" },
                                           Bytes { "Exception", "01 83 02 C0 F1" },
                                           Bytes { "WriteEcho", "01 06 F0 00 00 01 7B 0A" }),
                         nameOf);

TEST_F(Replies, AtTheRetryLimitGiveTheRequestUp)
{
    requestConditionRead(7, 2);

    EXPECT_EQ(reply("01 03 04 12 34 00 00 00 00"), 8);
    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(reply("01 83 02 C0 F1"), 2);
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_EQ(state.failCount, 0);
    EXPECT_EQ(state.lastFailed, 1);
    EXPECT_EQ(cacheKeys(), "1 D 7; 1 D 8");
    EXPECT_EQ(record(1, "D", 7).flag0, 1);
    EXPECT_EQ(record(1, "D", 8).flag0, 1);
}

namespace {

struct Limit {
    const char *name;
    const char *property;
};

class FirstBadReply : public Replies, public ::testing::WithParamInterface<Limit> { };

} // namespace

TEST_P(FirstBadReply, GivesTheRequestUp)
{
    init(GetParam().property);
    requestConditionRead(7, 1);

    EXPECT_EQ(silence(), 2);
    EXPECT_TRUE(state.sendFrames.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Limits, FirstBadReply,
                         ::testing::Values(Limit { "Zero", "1#0#0#0#10" },
                                           Limit { "One", "1#0#0#1#10" },
                                           Limit { "BelowZero", "1#0#0#-4#10" }),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(Replies, WithARetryLimitOf2GiveUpAtTheSecondBadOne)
{
    init("1#0#0#2#10");
    requestConditionRead(7, 1);

    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(silence(), 2);
}

TEST_F(Replies, ThatAreGoodResetTheFailedTries)
{
    requestConditionRead(7, 1);
    silence();
    silence();
    answer({ 1 });
    requestConditionRead(8, 1);

    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(state.failCount, 1);
}

TEST_F(Replies, AfterAGiveUpStartTheNextRequestAfresh)
{
    merge({ keyAddress(1, "D", 0, 1), keyAddress(1, "D", 5, 1) });
    nextFrame();
    silence();
    silence();
    silence();

    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");
    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(answer({ 1 }), 1);
    EXPECT_EQ(state.lastFailed, 0);
}

TEST_F(Replies, MarkAnsweredRegistersAsReadAgain)
{
    merge({ keyAddress(1, "D", 0, 2) });
    for (int i = 0; i < 3; ++i) {
        nextFrame();
        silence();
    }
    ASSERT_EQ(record(1, "D", 0).flag0, 1);
    ASSERT_EQ(record(1, "D", 1).flag0, 1);
    nextFrame();

    answer({ 0, 5 });

    EXPECT_EQ(record(1, "D", 0).flag0, 0);
    EXPECT_EQ(record(1, "D", 1).flag0, 0);
}

TEST_F(Replies, GivenUpLeaveTheValuesAndReportNothing)
{
    requestCyclicRead(7, 1);
    answer({ 0x1234 });
    calls.clear();
    nextFrame();
    silence();
    silence();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(data(1, "D", 7, 1), "34 12");
    EXPECT_EQ(calls, Calls {});
}

TEST_F(Replies, ToACountOfZeroMayBeAnExceptionOfFiveBytes)
{
    merge({ keyAddress(1, "D", 5, 0) });
    nextFrame();

    EXPECT_EQ(reply("01 83 02 C0 F1"), 1);
    EXPECT_EQ(state.failCount, 0);
}

TEST_F(Replies, ToACountOfMinusOneAreThreeBytes)
{
    merge({ keyAddress(1, "D", 5, -1) });
    nextFrame();

    EXPECT_EQ(reply("01 7E 80"), 1);
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Replies, ShorterThanACrcAreBad)
{
    merge({ keyAddress(1, "D", 5, -2) });
    nextFrame();
    ASSERT_EQ(frame.replyLength, 1);

    EXPECT_EQ(reply("FF"), 8);
}

TEST_F(Replies, CannotAnswerANegativeLength)
{
    merge({ keyAddress(1, "D", 5, -3) });
    nextFrame();
    ASSERT_EQ(frame.replyLength, -1);

    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(silence(), 8);
    EXPECT_EQ(silence(), 2);
}

TEST_F(Replies, OfTwoBytesAreTheStartValueOfTheCrc)
{
    requestConditionRead(5, 1);
    state.sendFrames[0].replyLength = 2;
    state.sendFrames[0].replyDataLength = 0;

    EXPECT_EQ(reply("FF FE"), 8);
    EXPECT_EQ(reply("FE FF"), 8);
    EXPECT_EQ(reply("FF FF"), 1);
}

TEST_F(Replies, AreNoneWhereNoneIsExpected)
{
    requestConditionRead(5, 1);
    state.sendFrames[0].replyLength = 0;

    EXPECT_EQ(silence(), 1);
    EXPECT_EQ(cacheKeys(), "");
    EXPECT_EQ(text(state.conditionList), "");
}

TEST_F(Replies, ReadAsZeroBeyondTheirEnd)
{
    requestConditionRead(5, 1);
    state.sendFrames[0].replyDataLength = 8;

    EXPECT_EQ(reply("01 03 02 12 34 B5 33"), 1);
    EXPECT_EQ(data(1, "D", 5, 4), "34 12 33 B5 00 00 00 00");
}

TEST_F(Replies, TakeTheirRegistersFromTheOffsetOfTheFrame)
{
    requestConditionRead(5, 1);
    state.sendFrames[0].replyDataOffset = 1;

    reply("01 03 02 12 34 B5 33");

    EXPECT_EQ(data(1, "D", 5, 1), "02 03");
}

TEST_F(Replies, IgnoreAnOddDataByte)
{
    requestConditionRead(5, 1);
    state.sendFrames[0].replyDataLength = 3;

    answer({ 0x1234 });

    EXPECT_EQ(cacheKeys(), "1 D 5");
}

TEST_F(Replies, RemoveOneFrameAndCloseTheRequestWithTheLast)
{
    requestConditionRead(5, 1);
    state.sendFrames.append(FRAME_PRO(state.sendFrames.at(0)));
    state.sendFrames[1].var.address = 9;

    EXPECT_EQ(answer({ 1 }), 1);
    EXPECT_EQ(state.sendFrames.size(), 1);
    EXPECT_EQ(text(state.conditionList), "1 D 5 1");
    EXPECT_EQ(calls, Calls {});

    EXPECT_EQ(answer({ 2 }), 1);
    EXPECT_EQ(cacheKeys(), "1 D 5; 1 D 9");
    EXPECT_EQ(text(state.conditionList), "");
    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
}

TEST_F(Replies, GivenUpDropAllFramesOfTheRequest)
{
    requestConditionRead(5, 1);
    state.sendFrames.append(FRAME_PRO(state.sendFrames.at(0)));
    state.sendFrames[1].var.address = 9;
    silence();
    silence();

    EXPECT_EQ(silence(), 2);
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_EQ(cacheKeys(), "1 D 5");
}

TEST_F(Replies, ThatAreGoodResetTheFailCountAfterTheClosing)
{
    requestConditionRead(5, 1);
    silence();
    silence();
    int failCountInside = -1;
    insideCallback = [&](int, int, const QString &, int) { failCountInside = state.failCount; };

    answer({ 0 });

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 0" }));
    EXPECT_EQ(failCountInside, 2);
    EXPECT_EQ(state.failCount, 0);
}

TEST_F(Replies, GivenUpResetTheFailCountBeforeTheClosing)
{
    requestConditionRead(5, 1);
    silence();
    silence();
    int failCountInside = -1;
    int framesInside = -1;
    insideCallback = [&](int, int, const QString &, int) {
        failCountInside = state.failCount;
        framesInside = static_cast<int>(state.sendFrames.size());
    };

    silence();

    EXPECT_EQ(calls, (Calls { "-1 -1 -1 -1" }));
    EXPECT_EQ(failCountInside, 0);
    EXPECT_EQ(framesInside, 0);
}

TEST_F(Replies, AreHandledWithoutACallback)
{
    dx4.setAddrValueChangeCallBack(nullptr);
    merge({ keyAddress(1, "D", 5, 1) });
    readOnce(1, "D", 5, 1);
    set(1, "F", 5, { 1 });

    EXPECT_EQ(serve(), "2 1 F 5 1");
    nextFrame();
    EXPECT_EQ(answer({ 0x1234 }), 1);
    EXPECT_EQ(data(1, "D", 5, 1), "34 12");
}

TEST_F(Replies, ToARequestOfAnotherLinkNumberReportThatNumber)
{
    init("17#0#0#3#10");
    merge({ keyAddress(6, "SW", 0, 1) });
    nextFrame();

    answer({ 9 });

    EXPECT_EQ(calls, (Calls { "17 6 SW 0" }));
}
