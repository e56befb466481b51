// SPDX-License-Identifier: MIT
// Which changes of a register the host hears of, under which name and address.
#include "cycle_fixture.h"

using Calls = std::vector<std::string>;

namespace {

class ChangeReports : public CycleFixture {
protected:
    ChangeReports() { init("9#0#0#3#10"); }

    /// Sets the marks of a register of station 1.
    void mark(const char *type, int address, int flags, int bitMask)
    {
        record(1, type, address).flags = flags;
        record(1, type, address).bitMask = bitMask;
    }

    /// Lets the device answer this value.
    void poll(const char *type, int address, int value)
    {
        state.conditionList = { variable(1, type, address, 1) };
        state.conditionVar = VARIABLE();
        nextFrame();
        answer({ value });
    }
};

struct Marks {
    const char *name;
    int address;
    int flags;
    int bitMask;
    int value;
    Calls expected;
};

class Marked : public ChangeReports, public ::testing::WithParamInterface<Marks> { };

} // namespace

TEST_P(Marked, ReportsAPolledChange)
{
    mark("D", GetParam().address, GetParam().flags, GetParam().bitMask);

    poll("D", GetParam().address, GetParam().value);

    EXPECT_EQ(calls, GetParam().expected);
}

TEST_P(Marked, ReportsAWrittenChange)
{
    mark("D", GetParam().address, GetParam().flags, GetParam().bitMask);

    set(1, "D", GetParam().address, { GetParam().value });

    EXPECT_EQ(calls, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Marked,
    ::testing::Values(Marks { "NothingMarked", 7, 0, 0, 1, {} },
                      Marks { "Register", 7, 1, 0, 1, { "9 1 D 7" } },
                      Marks { "RegisterUnchanged", 7, 1, 0, 0, {} },
                      Marks { "OtherFlagBits", 7, 0x7FFFFFF8, 0, 1, {} },
                      Marks { "FirstHalfOfADouble", 7, 2, 0, 1, { "9 1 D_double 7" } },
                      Marks { "SecondHalfOfADouble", 7, 4, 0, 1, { "9 1 D_double 6" } },
                      Marks { "BothHalves", 7, 6, 0, 1, { "9 1 D_double 7", "9 1 D_double 6" } },
                      Marks { "FirstHalfAtAddress0", 0, 2, 0, 1, { "9 1 D_double 0" } },
                      Marks { "SecondHalfAtAddress0", 0, 4, 0, 1, {} },
                      Marks { "BothHalvesAtAddress0", 0, 6, 0, 1, { "9 1 D_double 0" } },
                      Marks { "SecondHalfAtAddress1", 1, 4, 0, 1, { "9 1 D_double 0" } },
                      Marks { "NegativeAddress", -1, 7, 0, 1, { "9 1 D -1" } },
                      Marks { "Bit0", 2, 0, 0x0001, 0x0001, { "9 1 D_bit 32" } },
                      Marks { "Bit3", 2, 0, 0x0008, 0x0008, { "9 1 D_bit 35" } },
                      Marks { "Bit15", 2, 0, 0x8000, 0x8000, { "9 1 D_bit 47" } },
                      Marks { "BitUnchanged", 2, 0, 0x0008, 0x0004, {} },
                      Marks { "BitsPastTheRegister", 2, 0, 0x7FFF0000, 0xFFFF, {} },
                      Marks { "TheMarkedBitsThatChanged",
                              2,
                              0,
                              0x00F3,
                              0x00A1,
                              { "9 1 D_bit 32", "9 1 D_bit 37", "9 1 D_bit 39" } },
                      Marks { "BitOfANegativeAddress", -2, 0, 0x0001, 0x0001, { "9 1 D_bit -32" } },
                      Marks { "AllBits",
                              1,
                              0,
                              0xFFFF,
                              0xFFFF,
                              { "9 1 D_bit 16", "9 1 D_bit 17", "9 1 D_bit 18", "9 1 D_bit 19",
                                "9 1 D_bit 20", "9 1 D_bit 21", "9 1 D_bit 22", "9 1 D_bit 23",
                                "9 1 D_bit 24", "9 1 D_bit 25", "9 1 D_bit 26", "9 1 D_bit 27",
                                "9 1 D_bit 28", "9 1 D_bit 29", "9 1 D_bit 30", "9 1 D_bit 31" } },
                      Marks { "BitsThenRegisterThenDoubles",
                              3,
                              7,
                              0x0003,
                              0x0003,
                              { "9 1 D_bit 48", "9 1 D_bit 49", "9 1 D 3", "9 1 D_double 3",
                                "9 1 D_double 2" } }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(ChangeReports, NameBitsAfterTheirTypeBeforeTheRegister)
{
    mark("F", 2, 1, 0x0008);

    poll("F", 2, 0x0008);

    EXPECT_EQ(calls, (Calls { "9 1 F_bit 35", "9 1 F 2" }));
}

TEST_F(ChangeReports, ReportABitThatGoesOff)
{
    mark("D", 2, 0, 0x0008);
    poll("D", 2, 0x000F);
    calls.clear();

    poll("D", 2, 0x0007);

    EXPECT_EQ(calls, (Calls { "9 1 D_bit 35" }));
}

TEST_F(ChangeReports, OfAMergedConfigurationNameRegistersOnly)
{
    merge({ keyAddress(1, "D", 7, 2) });
    nextFrame();

    answer({ 0x0001, 0xFFFF });

    EXPECT_EQ(calls, (Calls { "9 1 D 7", "9 1 D 8" }));
}

TEST_F(ChangeReports, AreSilentForEqualValuesButCreateTheRecord)
{
    set(1, "D", 7, { 0 });

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(cacheKeys(), "1 D 7");
}

TEST_F(ChangeReports, EachHoldTheNewValueOfAPolledRegister)
{
    mark("D", 3, 7, 0x0001);
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "D", 3, 1)); };

    poll("D", 3, 0x1201);

    EXPECT_EQ(seen, (Calls { "01 12", "01 12", "01 12", "01 12" }));
}

TEST_F(ChangeReports, EachHoldTheOldValueOfAWrittenRegister)
{
    mark("D", 3, 7, 0x0001);
    Calls seen;
    insideCallback = [&](int, int, const QString &, int) { seen.push_back(data(1, "D", 3, 1)); };

    set(1, "D", 3, { 0x1201 });

    EXPECT_EQ(seen, (Calls { "00 00", "00 00", "00 00", "00 00" }));
}

TEST_F(ChangeReports, GoToTheCallbackStoredLast)
{
    static int other;
    other = 0;
    mark("D", 3, 1, 0);
    dx4.setAddrValueChangeCallBack([](int, int, QString &, int) { ++other; });

    set(1, "D", 3, { 1 });

    EXPECT_EQ(other, 1);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(ChangeReports, IgnoreWhatTheCallbackDoesToTheName)
{
    static std::vector<std::string> names;
    names.clear();
    mark("D", 3, 7, 0x0003);
    dx4.setAddrValueChangeCallBack([](int, int, QString &name, int) {
        names.push_back(name.toStdString());
        name = QStringLiteral("spoilt");
    });

    set(1, "D", 3, { 3 });

    EXPECT_EQ(names, (Calls { "D_bit", "D_bit", "D", "D_double", "D_double" }));
    EXPECT_EQ(cacheKeys(), "1 D 3");
}

TEST_F(ChangeReports, WithoutACallbackAreDropped)
{
    mark("D", 3, 7, 0xFFFF);
    dx4.setAddrValueChangeCallBack(nullptr);

    set(1, "D", 3, { 0x1234 });

    EXPECT_EQ(data(1, "D", 3, 1), "34 12");
}
