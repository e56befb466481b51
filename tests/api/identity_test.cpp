// SPDX-License-Identifier: MIT
// What the driver says of itself, and the callback that it keeps.
#include "driver_fixture.h"

namespace {

class Identity : public DriverFixture { };

void firstCallback(int, int, QString &, int) { }

void secondCallback(int, int, QString &, int) { }

TEST_F(Identity, ProtocolTypeIsZero)
{
    int type = 77;

    dx4.getProtocolType(&type);

    EXPECT_EQ(type, 0);
}

TEST_F(Identity, ProtocolTypeWithoutAPlaceForItIsNotWritten)
{
    int *nowhere = nullptr;

    dx4.getProtocolType(nowhere);

    EXPECT_EQ(state.linkId, 0);
}

TEST_F(Identity, DefaultParametersAreSixteenFieldsInOrder)
{
    QString text;

    dx4.getDriverParameter(text);

    EXPECT_EQ(text.toStdString(),
              "0,9600,8,NONE,1,0,1,192.168.0.1,8888,korvane_dx4,F,D,CW,SW,FRE,FU");
    EXPECT_EQ(text.count(QLatin1Char(',')), 15);
}

TEST_F(Identity, DefaultParametersReplaceWhatTheTextHeld)
{
    QString text = QStringLiteral("before");

    dx4.getDriverParameter(text);

    EXPECT_EQ(text.toStdString(),
              "0,9600,8,NONE,1,0,1,192.168.0.1,8888,korvane_dx4,F,D,CW,SW,FRE,FU");
}

TEST_F(Identity, DefaultParametersDoNotFollowTheLinkSettings)
{
    init("9#1#5#7#99");
    QString text;

    dx4.getDriverParameter(text);

    EXPECT_EQ(text.toStdString(),
              "0,9600,8,NONE,1,0,1,192.168.0.1,8888,korvane_dx4,F,D,CW,SW,FRE,FU");
}

TEST_F(Identity, PropertyPageIsAssigned)
{
    QString text = QStringLiteral("before");

    dx4.getDriverPropertyPage(text);

    EXPECT_EQ(text.toStdString(), "0_0");
}

TEST_F(Identity, SetPropertyPageEmptiesTheTextItIsGiven)
{
    QString text = QStringLiteral("7#0#0#3#16");

    dx4.setDriverPropertyPage(text);

    EXPECT_TRUE(text.isEmpty());
}

TEST_F(Identity, SetPropertyPageTakesNothingFromTheHost)
{
    init("1#0#2#3#16");
    QString text = QStringLiteral("7#1#8#9#99");

    dx4.setDriverPropertyPage(text);

    EXPECT_EQ(state.linkId, 1);
    EXPECT_EQ(state.writesLocalOnly, 0);
    EXPECT_EQ(state.property2, 2);
    EXPECT_EQ(state.retryLimit, 3);
    EXPECT_EQ(state.blockSize, 16);
}

TEST_F(Identity, CallbackIsStored)
{
    dx4.setAddrValueChangeCallBack(&firstCallback);

    EXPECT_EQ(state.valueChangeCallback, &firstCallback);
}

TEST_F(Identity, LaterCallbackReplacesTheEarlier)
{
    dx4.setAddrValueChangeCallBack(&firstCallback);

    dx4.setAddrValueChangeCallBack(&secondCallback);

    EXPECT_EQ(state.valueChangeCallback, &secondCallback);
}

TEST_F(Identity, NullCallbackEndsNotification)
{
    init("1#1#0#3#16");
    const KEY_ADDRESS wanted = keyAddress(1, "D", 0, 1);
    QList<KEY_ADDRESS> addresses { wanted };
    dx4.addrMerge(addresses);

    dx4.setAddrValueChangeCallBack(nullptr);
    set(1, "D", 0, { 5 });

    EXPECT_EQ(state.valueChangeCallback, nullptr);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(data(1, "D", 0, 1), "05 00");
}

TEST_F(Identity, CallbackStoredBeforeTheStartIsKept)
{
    dx4.setAddrValueChangeCallBack(&firstCallback);

    int result = 5;
    dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), &result, "1#0#0#3#16", &mutex);

    EXPECT_EQ(state.valueChangeCallback, &firstCallback);
}

TEST_F(Identity, CallbackMayFollowTheStart)
{
    int result = 5;
    dx4.initProperty(hostBlock.data(), 0, recipeBuffer.data(), &result, "1#0#0#3#16", &mutex);

    EXPECT_EQ(state.valueChangeCallback, nullptr);
    dx4.setAddrValueChangeCallBack(&firstCallback);

    EXPECT_EQ(state.valueChangeCallback, &firstCallback);
    EXPECT_EQ(state.linkId, 1);
}

TEST_F(Identity, StoringACallbackHasNoOtherEffect)
{
    init("4#0#2#3#16");
    set(1, "F", 5, { 7 });
    ASSERT_EQ(dx4.getSendFrame(frame), 1);

    dx4.setAddrValueChangeCallBack(&secondCallback);

    EXPECT_EQ(state.linkId, 4);
    EXPECT_EQ(state.phase, 2);
    EXPECT_EQ(state.tryCount, 1);
    EXPECT_EQ(state.writeList.size(), 1);
    EXPECT_EQ(state.sendFrames.size(), 1);
    EXPECT_EQ(state.dataAreas.size(), 1);
}

TEST_F(Identity, LoadedDriverStartsWithEveryMemberEmptyOrZero)
{
    EXPECT_EQ(state.valueChangeCallback, nullptr);
    EXPECT_EQ(state.linkId, 0);
    EXPECT_EQ(state.writesLocalOnly, 0);
    EXPECT_EQ(state.property2, 0);
    EXPECT_EQ(state.retryLimit, 0);
    EXPECT_EQ(state.blockSize, 0);
    EXPECT_EQ(state.hostBlock, nullptr);
    EXPECT_EQ(state.hostParam, 0);
    EXPECT_EQ(state.recipeBuffer, nullptr);
    EXPECT_EQ(state.hostMutex, nullptr);
    EXPECT_EQ(state.phase, 0);
    EXPECT_EQ(state.tryCount, 0);
    EXPECT_EQ(state.spare1, 0);
    EXPECT_EQ(state.failCount, 0);
    EXPECT_EQ(state.bitBlockSize, 0);
    EXPECT_EQ(state.writeBlockSize, 0);
    EXPECT_EQ(state.lastFailed, 0);
    EXPECT_EQ(state.spare2, 0);
    EXPECT_EQ(state.spare3, 0);
    EXPECT_EQ(state.rcpIndex, 0);
}

TEST_F(Identity, LoadedDriverStartsWithEmptyLists)
{
    EXPECT_TRUE(state.readList.isEmpty());
    EXPECT_TRUE(state.writeList.isEmpty());
    EXPECT_TRUE(state.conditionList.isEmpty());
    EXPECT_TRUE(state.dataAreas.isEmpty());
    EXPECT_TRUE(state.rcpVars.isEmpty());
    EXPECT_TRUE(state.rcpSendVars.isEmpty());
    EXPECT_TRUE(state.mergeIndexList.isEmpty());
    EXPECT_TRUE(state.sendFrames.isEmpty());
    EXPECT_TRUE(state.conditionVar.regType.isEmpty());
    EXPECT_TRUE(state.curVar.regType.isEmpty());
}

TEST_F(Identity, RegisterTypesThatWeighAddressesAreInTheirOwnOrder)
{
    ASSERT_EQ(state.regTypeList.size(), 6);
    EXPECT_EQ(state.regTypeList.at(0).toStdString(), "F");
    EXPECT_EQ(state.regTypeList.at(1).toStdString(), "D");
    EXPECT_EQ(state.regTypeList.at(2).toStdString(), "CW");
    EXPECT_EQ(state.regTypeList.at(3).toStdString(), "SW");
    EXPECT_EQ(state.regTypeList.at(4).toStdString(), "FRE");
    EXPECT_EQ(state.regTypeList.at(5).toStdString(), "FU");
}

} // namespace
