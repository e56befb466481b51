// SPDX-License-Identifier: MIT
// The word-wide and the byte-wide report of a change.
#include "korvane_dx4/change_report.h"

#include "driver_state.h"

using Calls = std::vector<std::string>;

namespace {

class WordChange : public DriverState {
protected:
    static void change(int a, int b, int address, const char *type = "D", int noBits = 0)
    {
        _wordDataChange(&a, &b, 1, QString::fromLatin1(type), address, noBits);
    }
};

class ByteChange : public DriverState {
protected:
    static void change(unsigned char a, unsigned char b, int address)
    {
        _byteDataChange(&a, &b, 1, QStringLiteral("D"), address);
    }
};

} // namespace

TEST_F(WordChange, OfEqualValuesIsSilentButCreatesTheRecord)
{
    change(5, 5, 7);

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(cacheKeys(), "1 D 7");
}

TEST_F(WordChange, OfAnUnknownRegisterCreatesItUnmarked)
{
    change(0, 1, 7);

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(cacheKeys(), "1 D 7");
}

TEST_F(WordChange, OfAMonitoredRegisterIsOneCall)
{
    record(1, "D", 7).flags = 1;

    change(0, 1, 7);

    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
}

TEST_F(WordChange, DoesNotCareWhichValueIsTheOldOne)
{
    record(1, "D", 7).flags = 1;
    record(1, "D", 7).bitMask = 1;

    change(1, 0, 7);
    change(0, 1, 7);

    EXPECT_EQ(calls, (Calls { "1 1 D_bit 112", "1 1 D 7", "1 1 D_bit 112", "1 1 D 7" }));
}

TEST_F(WordChange, ReportsBitsBeforeTheRegister)
{
    record(1, "F", 2).flags = 1;
    record(1, "F", 2).bitMask = 0x0008;

    change(0, 0x0008, 2, "F");

    EXPECT_EQ(calls, (Calls { "1 1 F_bit 35", "1 1 F 2" }));
}

TEST_F(WordChange, ReportsNoBitsWhenToldSo)
{
    record(1, "F", 2).flags = 1;
    record(1, "F", 2).bitMask = 0x0008;

    change(0, 0x0008, 2, "F", 1);

    EXPECT_EQ(calls, (Calls { "1 1 F 2" }));
}

TEST_F(WordChange, ComparesAll32BitsForTheRegister)
{
    record(1, "D", 7).flags = 1;
    record(1, "D", 7).bitMask = 0xFFFF;

    change(0x10000, 0, 7);

    EXPECT_EQ(calls, (Calls { "1 1 D 7" }));
}

TEST_F(WordChange, ReportsDoublesAtTheRegisterAndOneBelow)
{
    record(1, "D", 7).flags = 6;

    change(0, 1, 7);

    EXPECT_EQ(calls, (Calls { "1 1 D_double 7", "1 1 D_double 6" }));
}

TEST_F(WordChange, ReportsNoSecondHalfAtAddress0)
{
    record(1, "D", 0).flags = 4;

    change(0, 1, 0);

    EXPECT_EQ(calls, Calls {});
}

TEST_F(WordChange, ReportsNoDoubleBelowAddress0)
{
    record(1, "D", -1).flags = 6;

    change(0, 1, -1);

    EXPECT_EQ(calls, Calls {});
}

TEST_F(WordChange, SurvivesAHostThatGrowsTheCacheMeanwhile)
{
    record(1, "D", 7).flags = 7;
    record(1, "D", 7).bitMask = 3;
    insideCallback = [] {
        for (int i = 0; i < 300; ++i)
            driver.dataAreas.append(_DATA_());
    };

    change(0, 3, 7);

    EXPECT_EQ(calls,
              (Calls { "1 1 D_bit 112", "1 1 D_bit 113", "1 1 D 7", "1 1 D_double 7",
                       "1 1 D_double 6" }));
}

TEST_F(WordChange, WithoutACallbackCallsNothing)
{
    record(1, "D", 7).flags = 7;
    record(1, "D", 7).bitMask = 3;
    driver.valueChangeCallback = nullptr;

    change(0, 3, 7);

    EXPECT_EQ(calls, Calls {});
}

TEST_F(ByteChange, ReportsChangedBitsUnderThePlainTypeName)
{
    record(1, "D", 10).bitMask = 0x05;

    change(0x00, 0x05, 10);

    EXPECT_EQ(calls, (Calls { "1 1 D 10", "1 1 D 12" }));
}

TEST_F(ByteChange, OfEqualBytesIsSilentButCreatesTheRecord)
{
    change(5, 5, 10);

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(cacheKeys(), "1 D 10");
}

TEST_F(ByteChange, WithoutBitMarksIsSilent)
{
    record(1, "D", 10).flags = 7;

    change(0x00, 0xFF, 10);

    EXPECT_EQ(calls, Calls {});
}

TEST_F(ByteChange, ReportsNeitherRegisterNorDouble)
{
    record(1, "D", 10).flags = 7;
    record(1, "D", 10).bitMask = 0x01;

    change(0x00, 0xFF, 10);

    EXPECT_EQ(calls, (Calls { "1 1 D 10" }));
}

TEST_F(WordChange, LooksAtSixteenBitsOnly)
{
    record(1, "D", 10).bitMask = -1;

    change(0, 0x10000, 10);

    EXPECT_EQ(calls, Calls {});
}

TEST_F(ByteChange, LooksAtEightBitsInAscendingOrder)
{
    record(1, "D", 10).bitMask = 0xFFFF;

    change(0xFF, 0x00, 10);

    EXPECT_EQ(calls,
              (Calls { "1 1 D 10", "1 1 D 11", "1 1 D 12", "1 1 D 13", "1 1 D 14", "1 1 D 15",
                       "1 1 D 16", "1 1 D 17" }));
}

TEST_F(ByteChange, LeavesUnchangedBitsOut)
{
    record(1, "D", 10).bitMask = 0xFF;

    change(0x81, 0x80, 10);

    EXPECT_EQ(calls, (Calls { "1 1 D 10" }));
}

TEST_F(ByteChange, SurvivesAHostThatGrowsTheCacheMeanwhile)
{
    record(1, "D", 10).bitMask = 0x07;
    insideCallback = [] {
        for (int i = 0; i < 300; ++i)
            driver.dataAreas.append(_DATA_());
    };

    change(0x00, 0x07, 10);

    EXPECT_EQ(calls, (Calls { "1 1 D 10", "1 1 D 11", "1 1 D 12" }));
}
