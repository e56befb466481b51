// SPDX-License-Identifier: MIT
// The cache as the host reads it.
#include "cycle_fixture.h"

namespace {

class DataAreas : public CycleFixture {
protected:
    DataAreas() { init("1#0#0#3#10"); }
};

} // namespace

TEST_F(DataAreas, ReadRegistersThatWereNeverPolledAsZeroAndCreateThem)
{
    EXPECT_EQ(data(1, "D", 5, 2), "00 00 00 00");
    EXPECT_EQ(cacheKeys(), "1 D 5; 1 D 6");
}

TEST_F(DataAreas, ReadAgainWithoutCreatingAnything)
{
    data(1, "D", 5, 2);

    EXPECT_EQ(data(1, "D", 5, 2), "00 00 00 00");
    EXPECT_EQ(cacheKeys(), "1 D 5; 1 D 6");
}

TEST_F(DataAreas, ReturnOneInEveryCase)
{
    unsigned char out[2] = {};

    EXPECT_EQ(dx4.getData(1, QStringLiteral("D"), 5, 1, out), 1);
    EXPECT_EQ(dx4.getData(1, QStringLiteral("X"), 5, 1, out), 1);
    EXPECT_EQ(dx4.getData(1, QStringLiteral("D"), 5, 0, out), 1);
    EXPECT_EQ(dx4.getData(1, QStringLiteral("D"), 5, -1, out), 1);
    EXPECT_EQ(dx4.getData(1, QStringLiteral("D"), 5, 1, nullptr), 1);
}

TEST_F(DataAreas, CreateRecordsWithEverythingZeroButTheKey)
{
    data(7, "SW", 3, 1);

    ASSERT_EQ(state.dataAreas.size(), 1);
    const _DATA_ &created = state.dataAreas.at(0);
    EXPECT_EQ(created.station, 7);
    EXPECT_EQ(created.regType, QStringLiteral("SW"));
    EXPECT_EQ(created.address, 3);
    EXPECT_EQ(created.flag0, 0);
    EXPECT_EQ(created.writePending, 0);
    EXPECT_EQ(created.word1, 0);
    EXPECT_EQ(created.flags, 0);
    EXPECT_EQ(created.bitMask, 0);
    EXPECT_EQ(toHex(created.value, 4), "00 00 00 00");
    EXPECT_EQ(toHex(created.writeValue, 4), "00 00 00 00");
}

TEST_F(DataAreas, GiveTheLowByteFirst)
{
    readOnce(1, "D", 5, 2);
    nextFrame();
    answer({ 0x1234, 0x5678 });

    EXPECT_EQ(data(1, "D", 5, 2), "34 12 78 56");
}

TEST_F(DataAreas, ShowTheWrittenValueWhileTheWriteIsPending)
{
    readOnce(1, "F", 5, 1);
    nextFrame();
    answer({ 0x1234 });

    set(1, "F", 5, { 0x5678 });

    EXPECT_EQ(data(1, "F", 5, 1), "78 56");
    EXPECT_EQ(toHex(record(1, "F", 5).value, 2), "34 12");
}

TEST_F(DataAreas, ShowTheWrittenValueWhileThePendingMarkIsAnythingButZero)
{
    _DATA_ &edited = record(1, "D", 5);
    edited.value[0] = 0x11;
    edited.writeValue[0] = 0x22;
    edited.writeValue[1] = 0x33;
    edited.writePending = 200;

    EXPECT_EQ(data(1, "D", 5, 1), "22 33");
}

TEST_F(DataAreas, ShowTheLastValueOfARegisterWhoseReadFailed)
{
    _DATA_ &edited = record(1, "D", 5);
    edited.value[0] = 0x11;
    edited.flag0 = 1;

    EXPECT_EQ(data(1, "D", 5, 1), "11 00");
}

TEST_F(DataAreas, KeepStationTypeAndAddressApart)
{
    record(1, "D", 5).value[0] = 0x01;
    record(2, "D", 5).value[0] = 0x02;
    record(1, "F", 5).value[0] = 0x03;
    record(1, "D", 6).value[0] = 0x04;

    EXPECT_EQ(data(1, "D", 5, 2), "01 00 04 00");
    EXPECT_EQ(data(2, "D", 5, 1), "02 00");
    EXPECT_EQ(data(1, "F", 5, 1), "03 00");
    EXPECT_EQ(state.dataAreas.size(), 4);
}

TEST_F(DataAreas, FillTheGapsOfARangeAtTheEndOfTheList)
{
    data(1, "D", 6, 1);

    data(1, "D", 5, 3);

    EXPECT_EQ(cacheKeys(), "1 D 6; 1 D 5; 1 D 7");
}

TEST_F(DataAreas, TakeNegativeAddressesAsTheyAre)
{
    EXPECT_EQ(data(-3, "D", -1, 2), "00 00 00 00");
    EXPECT_EQ(cacheKeys(), "-3 D -1; -3 D 0");
}

TEST_F(DataAreas, ReachTheHighestAddress)
{
    EXPECT_EQ(data(1, "D", 2147483647, 1), "00 00");
    EXPECT_EQ(cacheKeys(), "1 D 2147483647");
}

TEST_F(DataAreas, WriteNothingForACountBelowOne)
{
    unsigned char out[2] = { 0xEE, 0xEE };

    dx4.getData(1, QStringLiteral("D"), 5, 0, out);
    dx4.getData(1, QStringLiteral("D"), 5, -1, out);

    EXPECT_EQ(toHex(out, 2), "EE EE");
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(DataAreas, WriteNoMoreThanTwoBytesPerRegister)
{
    unsigned char out[6] = { 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE };

    dx4.getData(1, QStringLiteral("D"), 5, 2, out);

    EXPECT_EQ(toHex(out, 6), "00 00 00 00 EE EE");
}

TEST_F(DataAreas, AreEmptiedByANewStartOfTheLink)
{
    record(1, "D", 5).value[0] = 0x11;

    init("1#0#0#3#10");

    EXPECT_EQ(cacheKeys(), "");
    EXPECT_EQ(data(1, "D", 5, 1), "00 00");
}

TEST_F(DataAreas, HoldManyRegisters)
{
    for (int address = 0; address < 3000; ++address)
        record(1, "D", address).value[0] = static_cast<unsigned char>(address % 251);

    EXPECT_EQ(data(1, "D", 2990, 3), "E5 00 E6 00 E7 00");
    EXPECT_EQ(state.dataAreas.size(), 3000);
}

namespace {

class KnownTypes : public DataAreas, public ::testing::WithParamInterface<const char *> { };
class UnknownTypes : public DataAreas, public ::testing::WithParamInterface<const char *> { };

} // namespace

TEST_P(KnownTypes, AreRead)
{
    record(1, GetParam(), 0).value[0] = 0x42;

    EXPECT_EQ(data(1, GetParam(), 0, 1), "42 00");
}

INSTANTIATE_TEST_SUITE_P(Types, KnownTypes, ::testing::Values("F", "D", "CW", "SW", "FRE", "FU"));

TEST_P(UnknownTypes, LeaveTheBufferAndTheCacheAlone)
{
    EXPECT_EQ(data(1, GetParam(), 0, 1), "EE EE");
    EXPECT_EQ(cacheKeys(), "");
}

TEST_P(UnknownTypes, AreNotReadEvenWhereTheHostMadeARecord)
{
    record(1, GetParam(), 0).value[0] = 0x42;

    EXPECT_EQ(data(1, GetParam(), 0, 1), "EE EE");
}

INSTANTIATE_TEST_SUITE_P(Types, UnknownTypes,
                         ::testing::Values("f", "X", "", "fu", "F ", "RWI", "D_bit"));
