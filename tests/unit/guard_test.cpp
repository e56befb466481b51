// SPDX-License-Identifier: MIT
// Guards against misuse: null pointers, odd names and positions outside of their list.
#include "driver_api.h"
#include "driver_state.h"
#include "frames/reply_bytes.h"
#include "korvane_dx4/change_report.h"
#include "korvane_dx4/cycle_end.h"
#include "korvane_dx4/data_areas.h"
#include "korvane_dx4/error_text.h"
#include "korvane_dx4/reply.h"
#include "korvane_dx4/writes.h"
#include "registers/register_type.h"
#include "wire/byte_order.h"

namespace {

using Calls = std::vector<std::string>;

class Guards : public DriverState { };

class NamesThatAreNoType : public ::testing::TestWithParam<const char *> { };

FRAME_PRO frameExpecting(int replyLength)
{
    FRAME_PRO frame;
    frame.replyLength = replyLength;
    return frame;
}

_RCP_VAR_PRO recipeAt(int bufferOffset)
{
    _RCP_VAR_PRO recipe;
    recipe.linkId = 1;
    recipe.station = 1;
    recipe.regType = QStringLiteral("F");
    recipe.count = 1;
    recipe.bufferOffset = bufferOffset;
    return recipe;
}

// Starts a recipe read of F 0 and answers it with 0x1234.
int readRecipe()
{
    FRAME_PRO frame;
    intf_getSendFrame(frame);
    QByteArray reply = QByteArray::fromHex("0103021234b533");
    QString errorText;
    return intf_dealRcvFrame(reply, errorText);
}

} // namespace

TEST_P(NamesThatAreNoType, AreUnknown)
{
    const QString name = QString::fromLatin1(GetParam());

    EXPECT_EQ(dx4::registerType(name), dx4::UnknownType);
}

INSTANTIATE_TEST_SUITE_P(Names, NamesThatAreNoType,
                         ::testing::Values("", "E", "f", "AW", "WC", "CX", "SU", "FX", "XU", "FRX",
                                           "FXE", "XRE", "FREQ"));

TEST_F(Guards, AWordReportWithoutValuesCreatesTheRecordOnly)
{
    int value = 1;
    record(1, "D", 7).flags = 1;

    _wordDataChange(nullptr, &value, 1, QStringLiteral("D"), 7, 0);
    _wordDataChange(&value, nullptr, 1, QStringLiteral("D"), 8, 0);

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(cacheKeys(), "1 D 7; 1 D 8");
}

TEST_F(Guards, AByteReportWithoutValuesCreatesTheRecordOnly)
{
    unsigned char value = 1;
    record(1, "D", 7).bitMask = 255;

    _byteDataChange(nullptr, &value, 1, QStringLiteral("D"), 7);
    _byteDataChange(&value, nullptr, 1, QStringLiteral("D"), 8);

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(cacheKeys(), "1 D 7; 1 D 8");
}

TEST_F(Guards, AWordOfAnUnknownTypeIsReportedUnderItsOwnName)
{
    int before = 1;
    int after = 2;
    record(1, "XY", 7).flags = 1;

    _wordDataChange(&before, &after, 1, QStringLiteral("XY"), 7, 0);

    EXPECT_EQ(calls, (Calls { "1 1 XY 7" }));
}

TEST_F(Guards, ALocalWriteWithoutValuesDoesNothing)
{
    write_saveDataToArea(1, QStringLiteral("D"), 7, 1, nullptr);

    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Guards, AListOtherThanTheCacheIsSearchedToo)
{
    QList<_DATA_> list;

    const int first = getIndexOfDataArea(1, QStringLiteral("D"), 5, list);
    const int second = getIndexOfDataArea(1, QStringLiteral("D"), 6, list);
    const int again = getIndexOfDataArea(1, QStringLiteral("D"), 6, list);

    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(again, 1);
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Guards, NoReplyIsRightWhileNothingIsPending)
{
    unsigned char bytes[2] = { 0xFF, 0xFF };

    EXPECT_EQ(check_rcv_data(bytes, 2), 0);
}

TEST_F(Guards, AReplyWithoutBytesIsRefused)
{
    driver.sendFrames.append(frameExpecting(8));

    EXPECT_EQ(check_rcv_data(nullptr, 8), 0);
}

TEST_F(Guards, AReplyShorterThanACrcIsRefused)
{
    unsigned char byte = 0xFF;
    driver.sendFrames.append(frameExpecting(1));

    EXPECT_EQ(check_rcv_data(&byte, 1), 0);
}

TEST_F(Guards, ThereIsNoErrorLineWhileNothingIsPending)
{
    EXPECT_EQ(getErrorInfo(QByteArray("\x01")), QString());
}

TEST_F(Guards, ARegisterBeforeTheReplyIsZero)
{
    const QByteArray reply("\x11\x22\x33", 3);

    EXPECT_EQ(dx4::replyRegister(reply, -5), 0);
    EXPECT_EQ(dx4::replyRegister(reply, -1), 0x11);
    EXPECT_EQ(dx4::replyRegister(reply, 1), 0x2233);
    EXPECT_EQ(dx4::replyRegister(reply, 2), 0x3300);
}

// A reply that shares a larger buffer has no zero behind its end.
TEST_F(Guards, ARegisterBehindTheReplyIsZeroWhateverLiesThere)
{
    const QByteArray reply = QByteArray::fromRawData("\x11\x22\x33\x44\x55", 3);

    EXPECT_EQ(dx4::replyByte(reply, 2), 0x33);
    EXPECT_EQ(dx4::replyByte(reply, 3), 0);
    EXPECT_EQ(dx4::replyRegister(reply, 2), 0x3300);
    EXPECT_EQ(dx4::replyRegister(reply, 3), 0);
}

TEST_F(Guards, SwappingLeavesTheBytesBehindTheRegistersAlone)
{
    const unsigned char from[] = { 1, 2, 3, 4, 5, 6 };
    std::vector<unsigned char> to(6, 0xEE);

    dx4::swapRegisters(from, to.data(), 2);

    EXPECT_EQ(to, (std::vector<unsigned char> { 2, 1, 4, 3, 0xEE, 0xEE }));
}

TEST_F(Guards, TheCatalogueMayBeAskedWithoutAList)
{
    EXPECT_EQ(intf_getRegListByType(1, nullptr), 1);
    EXPECT_EQ(intf_getRegDiscription(QStringLiteral("D"), nullptr), 1);
}

TEST_F(Guards, ANegativeRecipePositionServesAgainWhatWasServed)
{
    FRAME_PRO frame;
    driver.rcpSendVars.append(recipeAt(0));
    driver.rcpIndex = -1;
    hostBlock[60116] = 1;

    EXPECT_EQ(intf_getSendFrame(frame), 0);
    EXPECT_EQ(driver.phase, 0);
}

TEST_F(Guards, ANegativeRecipePositionWhileAReadIsUnderwayStoresNothing)
{
    driver.rcpVars = { recipeAt(0) };
    driver.rcpSendVars = driver.rcpVars;
    driver.mergeIndexList = { 0 };
    hostBlock[60116] = 1;
    const std::vector<unsigned short> before = recipeBuffer;
    FRAME_PRO frame;
    intf_getSendFrame(frame);
    driver.rcpIndex = -1;

    const int result = readRecipe();

    EXPECT_EQ(result, 1);
    EXPECT_EQ(recipeBuffer, before);
    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(driver.rcpIndex, 0);
}

TEST_F(Guards, ARecipeValueBeforeTheBufferIsReportedButNotStored)
{
    driver.rcpVars = { recipeAt(-3) };
    driver.rcpSendVars = driver.rcpVars;
    driver.mergeIndexList = { 0 };
    hostBlock[60116] = 1;
    const std::vector<unsigned short> before = recipeBuffer;

    const int result = readRecipe();

    EXPECT_EQ(result, 1);
    EXPECT_EQ(recipeBuffer, before);
    EXPECT_EQ(calls, (Calls { "0 -1 RWI -3", "0 -1 RWI -2" }));
}

TEST_F(Guards, ARecipeBlockThatStartsBeforeTheVariablesStoresNothing)
{
    driver.rcpVars = { recipeAt(0) };
    driver.rcpSendVars = driver.rcpVars;
    driver.mergeIndexList = { -1 };
    hostBlock[60116] = 1;

    const int result = readRecipe();

    EXPECT_EQ(result, 1);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(Guards, VariablesRemovedByTheCallbackAreNotServed)
{
    driver.rcpVars = { recipeAt(0), recipeAt(2) };
    driver.rcpSendVars = driver.rcpVars;
    driver.mergeIndexList = { 0 };
    hostBlock[60116] = 1;
    insideCallback = [] { driver.rcpVars.resize(1); };

    const int result = readRecipe();

    EXPECT_EQ(result, 1);
    EXPECT_EQ(calls, (Calls { "0 -1 RWI 0", "0 -1 RWI 1" }));
}

// Where long lists begin to be turned in another way, the order stays what it was.
TEST_F(Guards, CyclicReadsRotateInOrderHoweverManyThereAre)
{
    for (int length : { 1, 2, 511, 512, 513, 1000 }) {
        driver.readList.clear();
        for (int i = 0; i < length; ++i)
            driver.readList.append(variableOf(1, "D", i, 1));
        driver.phase = 4;

        for (int turn = 0; turn < 3; ++turn)
            dealListWhenFinish();

        ASSERT_EQ(driver.readList.size(), length);
        for (int i = 0; i < length; ++i)
            ASSERT_EQ(driver.readList.at(i).address, (i + 3) % length) << length << " reads";
    }
}

TEST_F(Guards, ALinkStartedAnewByTheCallbackEndsTheStoring)
{
    driver.blockSize = 16;
    driver.retryLimit = 3;
    QList<KEY_ADDRESS> wanted { keyOf(1, "D", 0, 3) };
    intf_addrMerge(wanted);
    FRAME_PRO frame;
    intf_getSendFrame(frame);
    QByteArray reply = QByteArray::fromHex("010306000100020003fd74");
    QString errorText;
    insideCallback = [this] {
        intf_initProperty(hostBlock.data(), 0, nullptr, nullptr, "1#0#0#3#16", &mutex);
    };

    const int result = intf_dealRcvFrame(reply, errorText);

    EXPECT_EQ(result, 1);
    EXPECT_EQ(calls, (Calls { "1 1 D 0" }));
    EXPECT_TRUE(driver.sendFrames.isEmpty());
}

TEST_F(Guards, ALinkStartedAnewWhileAWriteIsTakenBackLosesNoRegister)
{
    driver.blockSize = driver.writeBlockSize = 16;
    for (int address : { 0, 1 })
        record(1, "F", address).flags = 1;
    unsigned char data[] = { 1, 0, 2, 0 };
    intf_setData(1, QStringLiteral("F"), 0, 2, data, 0);
    FRAME_PRO frame;
    intf_getSendFrame(frame);
    calls.clear();
    insideCallback = [this] {
        intf_initProperty(hostBlock.data(), 0, nullptr, nullptr, "1#0#0#3#16", &mutex);
    };
    QByteArray nothing;
    QString errorText;

    const int result = intf_dealRcvFrame(nothing, errorText);

    EXPECT_EQ(result, 2);
    EXPECT_EQ(calls, (Calls { "1 1 F 0" }));
    EXPECT_EQ(cacheKeys(), "1 F 1");
}

// Only the length of a reply counts for the line; there are no such bytes.
TEST_F(Guards, TheLongestErrorLineIsWhole)
{
    FRAME_PRO frame;
    frame.var = variableOf(-2147483647 - 1, "FRE", -2147483647 - 1, -2147483647 - 1);
    driver.sendFrames.append(frame);

    const QString line = getErrorInfo(QByteArray::fromRawData("", 2147483647));

    EXPECT_EQ(line.toStdString(), "-2147483648#FRE-2147483648(-2147483648)(2147483647)");
}

TEST_F(Guards, AShortErrorLineBehindALongOneEndsAtItsEnd)
{
    FRAME_PRO frame;
    frame.var = variableOf(-2147483647 - 1, "FRE", -2147483647 - 1, -2147483647 - 1);
    driver.sendFrames.append(frame);
    getErrorInfo(QByteArray(9, '\0'));
    driver.sendFrames[0].var = variableOf(1, "D", 2, 3);

    const QString line = getErrorInfo(QByteArray(4, '\0'));

    EXPECT_EQ(line.toStdString(), "1#D2(3)(4)");
    EXPECT_EQ(line.utf16()[line.size()], 0);
}

TEST_F(Guards, MergingTakesTheLowestBitMarkToo)
{
    record(1, "D", 7).bitMask = 1;
    QList<KEY_ADDRESS> none;

    intf_addrMerge(none);

    EXPECT_EQ(record(1, "D", 7).bitMask, 0);
}
