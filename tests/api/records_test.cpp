// SPDX-License-Identifier: MIT
// The layout that host and driver share: the five records and the driver's one object.
#include "driver_fixture.h"

#include <algorithm>
#include <cstddef>

namespace {

/// The number for this build. A QString is one pointer in Qt 5 and three words in Qt 6; so is a
/// QList.
///
/// @param qt5     with Qt 5 on a 64-bit machine
/// @param qt6     with Qt 6 on a 64-bit machine
/// @param narrow  with Qt 5 on a 32-bit machine
constexpr unsigned one(unsigned qt5, unsigned qt6, unsigned narrow)
{
    if (sizeof(void *) == 4)
        return narrow;
    return QT_VERSION_MAJOR == 5 ? qt5 : qt6;
}

TEST(VariableRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(VARIABLE, varKind), 0U);
    EXPECT_EQ(offsetof(VARIABLE, station), 4U);
    EXPECT_EQ(offsetof(VARIABLE, regType), 8U);
    EXPECT_EQ(offsetof(VARIABLE, address), one(16, 32, 12));
    EXPECT_EQ(offsetof(VARIABLE, count), one(20, 36, 16));
    EXPECT_EQ(offsetof(VARIABLE, data), one(24, 40, 20));
    EXPECT_EQ(sizeof(VARIABLE), one(1048, 1064, 1044));
}

TEST(RecipeRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, linkId), 0U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, station), 4U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, regType), 8U);
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, address), one(16, 32, 12));
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, count), one(20, 36, 16));
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, bufferOffset), one(24, 40, 20));
    EXPECT_EQ(offsetof(_RCP_VAR_PRO, spare), one(28, 44, 24));
    EXPECT_EQ(sizeof(_RCP_VAR_PRO), one(32, 48, 28));
}

TEST(FrameRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(FRAME_PRO, frame), 0U);
    EXPECT_EQ(offsetof(FRAME_PRO, sendLength), 1024U);
    EXPECT_EQ(offsetof(FRAME_PRO, replyLength), 1028U);
    EXPECT_EQ(offsetof(FRAME_PRO, replyDataOffset), 1032U);
    EXPECT_EQ(offsetof(FRAME_PRO, replyDataLength), 1036U);
    EXPECT_EQ(offsetof(FRAME_PRO, spare), 1040U);
    EXPECT_EQ(offsetof(FRAME_PRO, var), one(1048, 1048, 1044));
    EXPECT_EQ(sizeof(FRAME_PRO), one(2096, 2112, 2088));
}

TEST(DataAreaRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(_DATA_, flag0), 0U);
    EXPECT_EQ(offsetof(_DATA_, writePending), 1U);
    EXPECT_EQ(offsetof(_DATA_, word1), 4U);
    EXPECT_EQ(offsetof(_DATA_, flags), 8U);
    EXPECT_EQ(offsetof(_DATA_, bitMask), 12U);
    EXPECT_EQ(offsetof(_DATA_, station), 16U);
    EXPECT_EQ(offsetof(_DATA_, regType), one(24, 24, 20));
    EXPECT_EQ(offsetof(_DATA_, address), one(32, 48, 24));
    EXPECT_EQ(offsetof(_DATA_, value), one(36, 52, 28));
    EXPECT_EQ(offsetof(_DATA_, writeValue), one(40, 56, 32));
    EXPECT_EQ(sizeof(_DATA_), one(48, 64, 36));
}

TEST(KeyAddressRecord, LaysItsFieldsOutInOrder)
{
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostTag), 0U);
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostWord1), one(8, 24, 4));
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostWord2), one(12, 28, 8));
    EXPECT_EQ(offsetof(KEY_ADDRESS, station), one(16, 32, 12));
    EXPECT_EQ(offsetof(KEY_ADDRESS, regType), one(24, 40, 16));
    EXPECT_EQ(offsetof(KEY_ADDRESS, hostText), one(32, 64, 20));
    EXPECT_EQ(offsetof(KEY_ADDRESS, address), one(40, 88, 24));
    EXPECT_EQ(offsetof(KEY_ADDRESS, subAddress), one(44, 92, 28));
    EXPECT_EQ(offsetof(KEY_ADDRESS, count), one(48, 96, 32));
    EXPECT_EQ(offsetof(KEY_ADDRESS, data), one(52, 100, 36));
    EXPECT_EQ(sizeof(KEY_ADDRESS), one(1080, 1128, 1060));
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
    template <typename Member> unsigned offset(const Member &member) const
    {
        return static_cast<unsigned>(reinterpret_cast<const char *>(&member)
                                     - reinterpret_cast<const char *>(&state));
    }
};

TEST_F(DriverObject, LaysItsSettingsOutInOrder)
{
    EXPECT_EQ(offset(state.valueChangeCallback), 0U);
    EXPECT_EQ(offset(state.linkId), one(8, 8, 4));
    EXPECT_EQ(offset(state.writesLocalOnly), one(12, 12, 8));
    EXPECT_EQ(offset(state.property2), one(16, 16, 12));
    EXPECT_EQ(offset(state.retryLimit), one(20, 20, 16));
    EXPECT_EQ(offset(state.blockSize), one(24, 24, 20));
    EXPECT_EQ(offset(state.hostBlock), one(32, 32, 24));
    EXPECT_EQ(offset(state.hostParam), one(40, 40, 28));
    EXPECT_EQ(offset(state.recipeBuffer), one(48, 48, 32));
    EXPECT_EQ(offset(state.hostMutex), one(56, 56, 36));
}

TEST_F(DriverObject, LaysItsListsOutInOrder)
{
    EXPECT_EQ(offset(state.readList), one(64, 64, 40));
    EXPECT_EQ(offset(state.writeList), one(72, 88, 44));
    EXPECT_EQ(offset(state.conditionList), one(80, 112, 48));
    EXPECT_EQ(offset(state.dataAreas), one(88, 136, 52));
    EXPECT_EQ(offset(state.rcpVars), one(96, 160, 56));
    EXPECT_EQ(offset(state.rcpSendVars), one(104, 184, 60));
    EXPECT_EQ(offset(state.mergeIndexList), one(112, 208, 64));
    EXPECT_EQ(offset(state.regTypeList), one(120, 232, 68));
}

TEST_F(DriverObject, LaysItsCycleOutInOrderAndEndsThere)
{
    EXPECT_EQ(offset(state.conditionVar), one(128, 256, 72));
    EXPECT_EQ(offset(state.curVar), one(1176, 1320, 1116));
    EXPECT_EQ(offset(state.phase), one(2224, 2384, 2160));
    EXPECT_EQ(offset(state.tryCount), one(2228, 2388, 2164));
    EXPECT_EQ(offset(state.spare1), one(2232, 2392, 2168));
    EXPECT_EQ(offset(state.failCount), one(2236, 2396, 2172));
    EXPECT_EQ(offset(state.bitBlockSize), one(2240, 2400, 2176));
    EXPECT_EQ(offset(state.writeBlockSize), one(2244, 2404, 2180));
    EXPECT_EQ(offset(state.lastFailed), one(2248, 2408, 2184));
    EXPECT_EQ(offset(state.spare2), one(2252, 2412, 2188));
    EXPECT_EQ(offset(state.spare3), one(2256, 2416, 2192));
    EXPECT_EQ(offset(state.sendFrames), one(2264, 2424, 2196));
    EXPECT_EQ(offset(state.rcpIndex), one(2272, 2448, 2200));
    EXPECT_EQ(sizeof(korvane_dx4), one(2280, 2456, 2204));
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
