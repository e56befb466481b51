// SPDX-License-Identifier: MIT
// The layout that host and driver share: the five records and the driver's one object.
#include "driver_fixture.h"

#include <algorithm>
#include <cstddef>

namespace {

// A QString is one pointer in Qt 5 and three words in Qt 6; so is a QList.
constexpr bool qt5 = QT_VERSION < QT_VERSION_CHECK(6, 0, 0);

TEST(VariableRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(VARIABLE, varKind), 0U);
    EXPECT_EQ(offsetof(VARIABLE, station), 4U);
    EXPECT_EQ(offsetof(VARIABLE, regType), 8U);
    EXPECT_EQ(offsetof(VARIABLE, address), qt5 ? 16U : 32U);
    EXPECT_EQ(offsetof(VARIABLE, count), qt5 ? 20U : 36U);
    EXPECT_EQ(offsetof(VARIABLE, data), qt5 ? 24U : 40U);
    EXPECT_EQ(sizeof(VARIABLE), qt5 ? 1048U : 1064U);
}

TEST(RecipeRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, linkId), 0U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, station), 4U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, regType), 8U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, address), qt5 ? 16U : 32U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, count), qt5 ? 20U : 36U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, bufferOffset), qt5 ? 24U : 40U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, spare), qt5 ? 28U : 44U);
    EXPECT_EQ(sizeof(_RCP_VAR_PRO), qt5 ? 32U : 48U);
}

TEST(FrameRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(FRAME_PRO, frame), 0U);
    EXPECT_EQ(offsetof(FRAME_PRO, sendLength), 1024U);
    EXPECT_EQ(offsetof(FRAME_PRO, replyLength), 1028U);
    EXPECT_EQ(offsetof(FRAME_PRO, replyDataOffset), 1032U);
    EXPECT_EQ(offsetof(FRAME_PRO, replyDataLength), 1036U);
    EXPECT_EQ(offsetof(FRAME_PRO, spare), 1040U);
    EXPECT_EQ(offsetof(FRAME_PRO, var), 1048U);
    EXPECT_EQ(sizeof(FRAME_PRO), qt5 ? 2096U : 2112U);
}

TEST(DataAreaRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(_DATA_, flag0), 0U);
    EXPECT_EQ(offsetof(_DATA_, writePending), 1U);
    EXPECT_EQ(offsetof(_DATA_, word1), 4U);
    EXPECT_EQ(offsetof(_DATA_, flags), 8U);
    EXPECT_EQ(offsetof(_DATA_, bitMask), 12U);
    EXPECT_EQ(offsetof(_DATA_, station), 16U);
    EXPECT_EQ(offsetof(_DATA_, regType), 24U);
    EXPECT_EQ(offsetof(_DATA_, address), qt5 ? 32U : 48U);
    EXPECT_EQ(offsetof(_DATA_, value), qt5 ? 36U : 52U);
    EXPECT_EQ(offsetof(_DATA_, writeValue), qt5 ? 40U : 56U);
    EXPECT_EQ(sizeof(_DATA_), qt5 ? 48U : 64U);
}

TEST(KeyAddressRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostTag), 0U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostWord1), qt5 ? 8U : 24U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostWord2), qt5 ? 12U : 28U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, station), qt5 ? 16U : 32U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, regType), qt5 ? 24U : 40U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostText), qt5 ? 32U : 64U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, address), qt5 ? 40U : 88U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, subAddress), qt5 ? 44U : 92U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, count), qt5 ? 48U : 96U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, data), qt5 ? 52U : 100U);
    EXPECT_EQ(sizeof(KEY_ADDRESS), qt5 ? 1080U : 1128U);
}

TEST(VariableRecord, CopyHasBytesOfItsOwn)
{
    VARIABLE original;
    original.regType = QStringLiteral("F");
    original.data[1023] = 7;

    const VARIABLE copy = original;
    original.data[1023] = 8;
    original.regType = QStringLiteral("D");

    EXPECT_EQ(copy.data[1023], 7);
    EXPECT_EQ(copy.regType.toStdString(), "F");
}

class DriverObject : public DriverFixture {
protected:
    /// Bytes from the start of the object to one of its members.
    template <typename Member> long offset(const Member &member) const
    {
        return reinterpret_cast<const char *>(&member) - reinterpret_cast<const char *>(&state);
    }
};

TEST_F(DriverObject, LaysItsSettingsOutInOrder)
{
    EXPECT_EQ(offset(state.valueChangeCallback), 0);
    EXPECT_EQ(offset(state.linkId), 8);
    EXPECT_EQ(offset(state.writesLocalOnly), 12);
    EXPECT_EQ(offset(state.property2), 16);
    EXPECT_EQ(offset(state.retryLimit), 20);
    EXPECT_EQ(offset(state.blockSize), 24);
    EXPECT_EQ(offset(state.hostBlock), 32);
    EXPECT_EQ(offset(state.hostParam), 40);
    EXPECT_EQ(offset(state.recipeBuffer), 48);
    EXPECT_EQ(offset(state.hostMutex), 56);
}

TEST_F(DriverObject, LaysItsListsOutInOrder)
{
    EXPECT_EQ(offset(state.readList), 64);
    EXPECT_EQ(offset(state.writeList), qt5 ? 72 : 88);
    EXPECT_EQ(offset(state.conditionList), qt5 ? 80 : 112);
    EXPECT_EQ(offset(state.dataAreas), qt5 ? 88 : 136);
    EXPECT_EQ(offset(state.rcpVars), qt5 ? 96 : 160);
    EXPECT_EQ(offset(state.rcpSendVars), qt5 ? 104 : 184);
    EXPECT_EQ(offset(state.mergeIndexList), qt5 ? 112 : 208);
    EXPECT_EQ(offset(state.regTypeList), qt5 ? 120 : 232);
}

TEST_F(DriverObject, LaysItsCycleOutInOrderAndEndsThere)
{
    EXPECT_EQ(offset(state.conditionVar), qt5 ? 128 : 256);
    EXPECT_EQ(offset(state.curVar), qt5 ? 1176 : 1320);
    EXPECT_EQ(offset(state.phase), qt5 ? 2224 : 2384);
    EXPECT_EQ(offset(state.tryCount), qt5 ? 2228 : 2388);
    EXPECT_EQ(offset(state.spare1), qt5 ? 2232 : 2392);
    EXPECT_EQ(offset(state.failCount), qt5 ? 2236 : 2396);
    EXPECT_EQ(offset(state.bitBlockSize), qt5 ? 2240 : 2400);
    EXPECT_EQ(offset(state.writeBlockSize), qt5 ? 2244 : 2404);
    EXPECT_EQ(offset(state.lastFailed), qt5 ? 2248 : 2408);
    EXPECT_EQ(offset(state.spare2), qt5 ? 2252 : 2412);
    EXPECT_EQ(offset(state.spare3), qt5 ? 2256 : 2416);
    EXPECT_EQ(offset(state.sendFrames), qt5 ? 2264 : 2424);
    EXPECT_EQ(offset(state.rcpIndex), qt5 ? 2272 : 2448);
    EXPECT_EQ(sizeof(korvane_dx4), qt5 ? 2280U : 2456U);
}

TEST_F(DriverObject, NewDataAreaReadsAsZero)
{
    init();

    EXPECT_EQ(data(3, "D", 7, 1), "00 00");

    ASSERT_EQ(state.dataAreas.size(), 1);
    EXPECT_EQ(state.dataAreas.at(0).station, 3);
    EXPECT_EQ(state.dataAreas.at(0).regType.toStdString(), "D");
    EXPECT_EQ(state.dataAreas.at(0).address, 7);
}

TEST_F(DriverObject, NewDataAreaIsZeroButForItsKey)
{
    init();

    data(3, "D", 7, 1);

    ASSERT_EQ(state.dataAreas.size(), 1);
    EXPECT_EQ(state.dataAreas.at(0).flag0, 0);
    EXPECT_EQ(state.dataAreas.at(0).writePending, 0);
    EXPECT_EQ(state.dataAreas.at(0).word1, 0);
    EXPECT_EQ(state.dataAreas.at(0).flags, 0);
    EXPECT_EQ(state.dataAreas.at(0).bitMask, 0);
    EXPECT_EQ(toHex(state.dataAreas.at(0).value, 4), "00 00 00 00");
    EXPECT_EQ(toHex(state.dataAreas.at(0).writeValue, 4), "00 00 00 00");
}

TEST_F(DriverObject, DataAreaReadsAsTheReplyThatFilledIt)
{
    init();
    dx4.addConditionRead(keyAddress(3, "D", 7, 1), 0);
    ASSERT_EQ(dx4.getSendFrame(frame), 1);

    EXPECT_EQ(replyWithCrc("03 03 02 12 34"), 1);

    EXPECT_EQ(data(3, "D", 7, 1), "34 12");
    EXPECT_EQ(toHex(state.dataAreas.at(0).value, 4), "34 12 00 00");
}

TEST_F(DriverObject, CyclicReadDoesNotTakeTheHostsFields)
{
    init();
    KEY_ADDRESS wanted = keyAddress(1, "D", 5, 1, 9);
    wanted.hostTag = QStringLiteral("tag");
    std::fill_n(wanted.data, 1024, static_cast<unsigned char>(0xEE));
    QList<KEY_ADDRESS> addresses { wanted };

    dx4.addrMerge(addresses);

    ASSERT_EQ(state.readList.size(), 1);
    EXPECT_EQ(state.readList.at(0).varKind, 4);
    EXPECT_EQ(state.readList.at(0).data[0], 0);
    EXPECT_EQ(state.readList.at(0).data[1023], 0);
    EXPECT_EQ(addresses.at(0).hostTag.toStdString(), "tag");
    EXPECT_EQ(addresses.at(0).subAddress, 9);
    EXPECT_EQ(addresses.at(0).data[1023], 0xEE);
}

} // namespace
