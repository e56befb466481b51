// SPDX-License-Identifier: MIT
// Find-or-create, monitor marks and the bit helper of the cache.
#include "korvane_dx4/data_areas.h"

#include "driver_state.h"

namespace {

class Store : public DriverState { };

int find(int station, const char *type, int address)
{
    return getIndexOfDataArea(station, QString::fromLatin1(type), address, driver.dataAreas);
}

int mark(int station, const char *type, int address, int count)
{
    return _setDataAreaMonitorFlag(station, QString::fromLatin1(type), address, count);
}

} // namespace

TEST_F(Store, FindsARecordByItsKey)
{
    record(1, "D", 0);
    record(2, "D", 0);
    record(1, "F", 0);
    record(1, "D", 1);

    EXPECT_EQ(find(1, "D", 0), 0);
    EXPECT_EQ(find(2, "D", 0), 1);
    EXPECT_EQ(find(1, "F", 0), 2);
    EXPECT_EQ(find(1, "D", 1), 3);
    EXPECT_EQ(driver.dataAreas.size(), 4);
}

TEST_F(Store, AppendsAMissingRecord)
{
    record(1, "D", 0);

    EXPECT_EQ(find(1, "D", 7), 1);
    EXPECT_EQ(find(1, "D", 7), 1);
    EXPECT_EQ(cacheKeys(), "1 D 0; 1 D 7");
    EXPECT_EQ(driver.dataAreas.at(1).flags, 0);
    EXPECT_EQ(driver.dataAreas.at(1).writePending, 0);
}

TEST_F(Store, FindsEvenTypesThatTheHostCannotRead)
{
    EXPECT_EQ(find(1, "X", 7), 0);
    EXPECT_EQ(find(1, "x", 7), 1);
    EXPECT_EQ(find(1, "X", 7), 0);
}

TEST_F(Store, WorksOnTheListItIsGiven)
{
    QList<_DATA_> other;

    EXPECT_EQ(getIndexOfDataArea(1, QStringLiteral("D"), 7, other), 0);
    EXPECT_EQ(getIndexOfDataArea(1, QStringLiteral("D"), 8, other), 1);
    EXPECT_EQ(getIndexOfDataArea(1, QStringLiteral("D"), 7, other), 0) << "found again";
    EXPECT_EQ(other.size(), 2);
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Store, FindsTheRecordWhereverTheListWasMoved)
{
    find(1, "D", 0);
    find(1, "D", 1);
    find(1, "D", 2);

    driver.dataAreas.removeFirst();

    EXPECT_EQ(find(1, "D", 2), 1);
    EXPECT_EQ(find(1, "D", 0), 2);
}

TEST_F(Store, MarksARangeAndCreatesWhatIsMissing)
{
    record(1, "D", 11).value[0] = 0x42;

    EXPECT_EQ(mark(1, "D", 10, 3), 0);

    EXPECT_EQ(cacheKeys(), "1 D 11; 1 D 10; 1 D 12");
    EXPECT_EQ(record(1, "D", 10).flags, 1);
    EXPECT_EQ(record(1, "D", 11).flags, 1);
    EXPECT_EQ(record(1, "D", 12).flags, 1);
    EXPECT_EQ(record(1, "D", 11).value[0], 0x42);
}

TEST_F(Store, MarksLeaveOtherBitsAlone)
{
    record(1, "D", 10).flags = 6;
    record(1, "D", 10).bitMask = 0x1234;

    mark(1, "D", 10, 1);

    EXPECT_EQ(record(1, "D", 10).flags, 7);
    EXPECT_EQ(record(1, "D", 10).bitMask, 0x1234);
}

TEST_F(Store, MarksNothingForUnknownTypesOrCountsBelowOne)
{
    EXPECT_EQ(mark(1, "d", 10, 3), 0);
    EXPECT_EQ(mark(1, "", 10, 3), 0);
    EXPECT_EQ(mark(1, "D", 10, 0), 0);
    EXPECT_EQ(mark(1, "D", 10, -1), 0);
    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Store, MarksEachOfTheSixTypes)
{
    for (const char *type : { "F", "D", "CW", "SW", "FRE", "FU" })
        mark(1, type, 0, 1);

    EXPECT_EQ(cacheKeys(), "1 F 0; 1 D 0; 1 CW 0; 1 SW 0; 1 FRE 0; 1 FU 0");
}

namespace {

struct Bit {
    const char *name;
    int value;
    int bit;
    int on;
    int expected;
};

class BitValue : public ::testing::TestWithParam<Bit> { };

} // namespace

TEST_P(BitValue, IsSetOrCleared)
{
    EXPECT_EQ(_setBitValue(GetParam().value, GetParam().bit, GetParam().on), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BitValue,
    ::testing::Values(
        Bit { "Set", 5, 1, 1, 7 }, Bit { "Clear", 7, 1, 0, 5 }, Bit { "SetAgain", 7, 1, 1, 7 },
        Bit { "ClearAgain", 5, 1, 0, 5 }, Bit { "AnyOnValueSets", 5, 1, -3, 7 },
        Bit { "SetBit31", 0, 31, 1, -2147483647 - 1 }, Bit { "ClearBit31", -1, 31, 0, 2147483647 },
        Bit { "SetBit32ChangesNothing", 5, 32, 1, 5 }, Bit { "SetBit32IsNotBit0", 4, 32, 1, 4 },
        Bit { "ClearBit40ChangesNothing", 7, 40, 0, 7 },
        Bit { "SetBit255ChangesNothing", 5, 255, 1, 5 }, Bit { "Bit256IsBit0", 4, 256, 1, 5 },
        Bit { "Bit257IsBit1", 7, 257, 0, 5 }, Bit { "Bit288IsBit32", 5, 288, 1, 5 },
        Bit { "BitMinus1IsBit255", 5, -1, 1, 5 }, Bit { "BitMinus255IsBit1", 5, -255, 1, 7 }),
    [](const auto &row) { return std::string(row.param.name); });
