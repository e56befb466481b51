// SPDX-License-Identifier: MIT
// What an accepted reply stores, reports and settles.
#include "reply_fixture.h"

using Calls = std::vector<std::string>;

TEST_F(Replies, WithTheSameValueReportNothing)
{
    requestCyclicRead(7, 1);
    answer({ 0x1234 });
    calls.clear();
    nextFrame();

    EXPECT_EQ(answer({ 0x1234 }), 1);
    EXPECT_EQ(calls, Calls {});
}

// The values are such that a register read at another place of the reply would look unchanged.
TEST_F(Replies, WithAChangeBehindUnchangedRegistersReportAndStoreIt)
{
    requestCyclicRead(7, 3);
    answer({ 0x0101, 0x0203, 0x0707 });
    nextFrame();
    answer({ 0x0101, 0x0203, 0x0707 });
    calls.clear();
    nextFrame();

    EXPECT_EQ(answer({ 0x0101, 0x0502, 0x0307 }), 1);

    EXPECT_EQ(calls, (Calls { "1 1 D 8", "1 1 D 9" }));
    EXPECT_EQ(data(1, "D", 7, 3), "01 01 02 05 07 03");
}

TEST_F(Replies, WithAnotherLowByteReportOnce)
{
    requestCyclicRead(7, 1);
    answer({ 0x1234 });
    calls.clear();
    nextFrame();

    answer({ 0x1235 });

    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
    EXPECT_EQ(data(1, "D", 7, 1), "35 12");
}

TEST_F(Replies, WithAnotherHighByteReportOnce)
{
    requestCyclicRead(7, 1);
    answer({ 0x1234 });
    calls.clear();
    nextFrame();

    answer({ 0x1334 });

    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
}

TEST_F(Replies, WithAFirstValueOfZeroReportNothing)
{
    requestCyclicRead(7, 1);

    answer({ 0 });

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(data(1, "D", 7, 1), "00 00");
}

TEST_F(Replies, WithAnyOtherFirstValueReportOnce)
{
    requestCyclicRead(7, 1);

    answer({ 0x8000 });

    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
}

TEST_F(Replies, CreateTheRecordsThatAreMissing)
{
    requestConditionRead(7, 3);

    answer({ 0x0102, 0, 0x0304 });

    EXPECT_EQ(cacheKeys(), "1 D 7; 1 D 8; 1 D 9");
    EXPECT_EQ(data(1, "D", 7, 3), "02 01 00 00 04 03");
    EXPECT_EQ(record(1, "D", 7).flags, 0);
}

TEST_F(Replies, StoreRegistersThatAreNotMonitoredWithoutAReport)
{
    requestConditionRead(7, 1);
    state.conditionVar = VARIABLE();

    answer({ 0x0102 });

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(data(1, "D", 7, 1), "02 01");
}

TEST_F(Replies, ReportChangedRegistersInAscendingOrder)
{
    requestCyclicRead(7, 4);

    answer({ 1, 0, 3, 4 });

    EXPECT_EQ(calls, (Calls { "1 1 D 7", "1 1 D 9", "1 1 D 10" }));
}

TEST_F(Replies, StoreAValueBeforeReportingIt)
{
    requestCyclicRead(7, 1);
    std::string seen;
    insideCallback = [&](int, int, const QString &, int) { seen = data(1, "D", 7, 1); };

    answer({ 0x1234 });

    EXPECT_EQ(seen, "34 12");
}

TEST_F(Replies, StoreEachRegisterOnlyAfterTheOneBeforeWasReported)
{
    requestCyclicRead(7, 3);
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "D", 7, 3)); };

    answer({ 0x0011, 0x0022, 0x0033 });

    EXPECT_EQ(seen, (Calls { "11 00 00 00 00 00", "11 00 22 00 00 00", "11 00 22 00 33 00" }));
}

TEST_F(Replies, CreateEachRecordOnlyAfterTheOneBeforeWasReported)
{
    requestConditionRead(7, 2);
    record(1, "D", 7).flags = 1;
    std::string seen;
    insideCallback = [&](int, int, const QString &name, int) {
        if (name == QStringLiteral("D"))
            seen = cacheKeys();
    };

    answer({ 1, 2 });

    EXPECT_EQ(seen, "1 D 7");
    EXPECT_EQ(cacheKeys(), "1 D 7; 1 D 8");
}

TEST_F(Replies, ToAnUnknownTypeAreAcceptedAndStoreNothing)
{
    readOnce(1, "X", 7, 1);
    nextFrame();

    EXPECT_EQ(answer({ 5 }), 1);
    EXPECT_EQ(cacheKeys(), "");
    EXPECT_EQ(text(state.conditionList), "");
}

TEST_F(Replies, ToAnUnknownTypeThatIsGivenUpMarkNothing)
{
    readOnce(1, "X", 7, 1);
    nextFrame();
    silence();
    silence();

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(cacheKeys(), "");
}

namespace {

class StoredTypes : public Replies, public ::testing::WithParamInterface<const char *> { };

} // namespace

TEST_P(StoredTypes, StoreTheirRegisters)
{
    readOnce(1, GetParam(), 0, 1);
    nextFrame();

    EXPECT_EQ(answer({ 0x1234 }), 1);
    EXPECT_EQ(data(1, GetParam(), 0, 1), "34 12");
}

INSTANTIATE_TEST_SUITE_P(Types, StoredTypes, ::testing::Values("F", "D", "CW", "SW", "FRE", "FU"));

TEST_F(Replies, WithAChangedValueEndAPendingWrite)
{
    requestCyclicRead(7, 1);
    set(1, "D", 7, { 0x0055 });

    answer({ 0x1234 });

    EXPECT_EQ(record(1, "D", 7).writePending, 0);
    EXPECT_EQ(data(1, "D", 7, 1), "34 12");
}

TEST_F(Replies, WithAnUnchangedValueKeepAPendingWrite)
{
    requestCyclicRead(7, 1);
    set(1, "D", 7, { 0x0055 });

    answer({ 0 });

    EXPECT_EQ(record(1, "D", 7).writePending, 1);
    EXPECT_EQ(data(1, "D", 7, 1), "55 00");
}

TEST_F(Replies, WithAChangedValueEndAPendingWriteOfAConditionReadToo)
{
    requestConditionRead(7, 1);
    set(1, "D", 7, { 0x0055 });

    answer({ 0x1234 });

    EXPECT_EQ(record(1, "D", 7).writePending, 0);
}

TEST_F(Replies, WithAChangedValueKeepAPendingWriteWhileWord1IsSet)
{
    requestCyclicRead(7, 1);
    set(1, "D", 7, { 0x0055 });
    record(1, "D", 7).word1 = 1;
    calls.clear();

    answer({ 0x1234 });

    EXPECT_EQ(record(1, "D", 7).writePending, 1);
    EXPECT_EQ(toHex(record(1, "D", 7).value, 2), "34 12");
    EXPECT_EQ(data(1, "D", 7, 1), "55 00");
    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
}

TEST_F(Replies, CompareWithTheDeviceValueNotWithTheWrittenOne)
{
    requestCyclicRead(7, 1);
    set(1, "D", 7, { 0x1234 });
    calls.clear();

    answer({ 0x1234 });

    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
    EXPECT_EQ(record(1, "D", 7).writePending, 0);
}

TEST_F(Replies, ThatEchoAWriteConfirmIt)
{
    set(1, "F", 5, { 0x1234 });
    nextFrame();

    EXPECT_EQ(reply("01 06 F0 05 12 34 A7 BC"), 1);
    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(toHex(record(1, "F", 5).value, 4), "34 12 00 00");
    EXPECT_EQ(text(state.writeList), "");
    EXPECT_EQ(state.lastFailed, 0);
}

TEST_F(Replies, ConfirmAWriteWithAnyEightBytesOfRightCrc)
{
    set(1, "F", 5, { 0x1234 });
    nextFrame();

    EXPECT_EQ(reply("07 83 AA BB CC DD 80 D6"), 1);
    EXPECT_EQ(toHex(record(1, "F", 5).value, 2), "34 12");
}

TEST_F(Replies, ConfirmAWriteWithoutAReport)
{
    record(1, "F", 5).flags = 1;
    set(1, "F", 5, { 0x1234 });
    nextFrame();
    calls.clear();

    echo();

    EXPECT_EQ(calls, Calls {});
}

TEST_F(Replies, SettleWhateverIsWrittenByTheTimeOfTheEcho)
{
    set(1, "F", 5, { 0x0011 });
    nextFrame();
    set(1, "F", 5, { 0x0022 });

    echo();

    EXPECT_EQ(toHex(record(1, "F", 5).value, 2), "22 00");
    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(nextFrame(), "01 06 F0 05 00 22 2A D2");
}

TEST_F(Replies, GiveAWriteUpWithTwoReports)
{
    record(1, "F", 5).flags = 1;
    set(1, "F", 5, { 0x0011 });
    nextFrame();
    calls.clear();
    silence();
    silence();
    ASSERT_EQ(calls, Calls {});

    EXPECT_EQ(silence(), 2);
    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 5" }));
    EXPECT_EQ(data(1, "F", 5, 1), "00 00");
    EXPECT_EQ(record(1, "F", 5).flag0, 0);
    EXPECT_EQ(text(state.writeList), "");
}

TEST_F(Replies, GiveAWriteOfTwoRegistersUpRegisterByRegisterTwice)
{
    record(1, "F", 5).flags = 1;
    record(1, "F", 6).flags = 1;
    set(1, "F", 5, { 0x0011, 0x0022 });
    nextFrame();
    calls.clear();
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "F", 5, 2)); };
    silence();
    silence();

    silence();

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 6", "1 1 F 5", "1 1 F 6" }));
    EXPECT_EQ(seen, (Calls { "00 00 22 00", "00 00 00 00", "00 00 00 00", "00 00 00 00" }));
}

TEST_F(Replies, WithoutDataOutsideAWriteSettleNothing)
{
    set(1, "D", 5, { 0x0011 });
    state.writeList.clear();
    requestConditionRead(5, 0);

    EXPECT_EQ(reply("01 83 02 C0 F1"), 1);
    EXPECT_EQ(record(1, "D", 5).writePending, 1);
    EXPECT_EQ(text(state.conditionList), "");
}
