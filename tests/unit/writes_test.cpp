// SPDX-License-Identifier: MIT
// The local half of a write and its settlement.
#include "korvane_dx4/writes.h"

#include "driver_state.h"

using Calls = std::vector<std::string>;

namespace {

class LocalWrite : public DriverState {
protected:
    static void save(int address, int count, std::vector<unsigned char> bytes,
                     const char *type = "F")
    {
        write_saveDataToArea(1, QString::fromLatin1(type), address, count, bytes.data());
    }
};

class Settlement : public DriverState {
protected:
    static void settle(int address, int count, int success, const char *type = "F")
    {
        _write_FailOrSuc(1, QString::fromLatin1(type), address, count, success);
    }

    static void pend(int address, unsigned char device, unsigned char written)
    {
        _DATA_ &data = record(1, "F", address);
        data.flags = 1;
        data.writePending = 1;
        data.value[0] = device;
        data.writeValue[0] = written;
    }
};

} // namespace

TEST_F(LocalWrite, StoresLowByteFirstAndLeavesTheUpperBytes)
{
    save(5, 2, { 0x34, 0x12, 0x78, 0x56 });

    EXPECT_EQ(cacheKeys(), "1 F 5; 1 F 6");
    EXPECT_EQ(record(1, "F", 5).writeValue[0], 0x34);
    EXPECT_EQ(record(1, "F", 5).writeValue[1], 0x12);
    EXPECT_EQ(record(1, "F", 5).writeValue[2], 0);
    EXPECT_EQ(record(1, "F", 5).writeValue[3], 0);
    EXPECT_EQ(record(1, "F", 6).writeValue[0], 0x78);
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
    EXPECT_EQ(record(1, "F", 5).value[0], 0);
}

TEST_F(LocalWrite, ComparesWithTheDeviceValueWhenNothingIsPending)
{
    record(1, "F", 5).flags = 1;
    record(1, "F", 5).value[0] = 0x34;
    record(1, "F", 5).writeValue[0] = 0x99;

    save(5, 1, { 0x34, 0x00 });

    EXPECT_EQ(calls, Calls {});
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
}

TEST_F(LocalWrite, ComparesWithTheWrittenValueWhileOneIsPending)
{
    record(1, "F", 5).flags = 1;
    record(1, "F", 5).value[0] = 0x34;
    record(1, "F", 5).writeValue[0] = 0x99;
    record(1, "F", 5).writePending = 1;

    save(5, 1, { 0x34, 0x00 });

    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
}

TEST_F(LocalWrite, ReportsBeforeItStores)
{
    record(1, "F", 5).flags = 1;
    int pendingInside = -1;
    insideCallback = [&] { pendingInside = record(1, "F", 5).writePending; };

    save(5, 1, { 0x34, 0x12 });

    EXPECT_EQ(pendingInside, 0);
    EXPECT_EQ(record(1, "F", 5).writePending, 1);
}

TEST_F(LocalWrite, IgnoresUnknownTypesAndCountsBelowOne)
{
    save(5, 1, { 1, 2 }, "X");
    save(5, 0, { 1, 2 });
    save(5, -1, { 1, 2 });

    EXPECT_EQ(cacheKeys(), "");
}

TEST_F(Settlement, OfASuccessTakesTheWrittenValueSilently)
{
    pend(5, 0x11, 0x22);

    settle(5, 1, 1);

    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(record(1, "F", 5).value[0], 0x22);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(Settlement, OfAFailureReportsTheDeviceValueOnce)
{
    pend(5, 0x11, 0x22);

    settle(5, 1, 0);

    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(record(1, "F", 5).value[0], 0x11);
    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
}

TEST_F(Settlement, OfAFailureWithEqualValuesIsSilent)
{
    pend(5, 0x11, 0x11);

    settle(5, 1, 0);

    EXPECT_EQ(record(1, "F", 5).writePending, 0);
    EXPECT_EQ(calls, Calls {});
}

TEST_F(Settlement, WithAnyValueButOneIsAFailure)
{
    pend(5, 0x11, 0x22);

    settle(5, 1, 2);

    EXPECT_EQ(record(1, "F", 5).value[0], 0x11);
    EXPECT_EQ(calls, (Calls { "1 1 F 5" }));
}

TEST_F(Settlement, OfAFailureReportsAgainEachTime)
{
    pend(5, 0x11, 0x22);

    settle(5, 1, 0);
    settle(5, 1, 0);

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 5" }));
}

TEST_F(Settlement, GoesRegisterByRegister)
{
    pend(5, 0x11, 0x22);
    pend(6, 0x33, 0x44);
    Calls pending;
    insideCallback = [&] {
        pending.push_back(std::to_string(record(1, "F", 5).writePending)
                          + std::to_string(record(1, "F", 6).writePending));
    };

    settle(5, 2, 0);

    EXPECT_EQ(calls, (Calls { "1 1 F 5", "1 1 F 6" }));
    EXPECT_EQ(pending, (Calls { "01", "00" }));
}

TEST_F(Settlement, CreatesMissingRecords)
{
    settle(5, 2, 1);

    EXPECT_EQ(cacheKeys(), "1 F 5; 1 F 6");
    EXPECT_EQ(calls, Calls {});
}

TEST_F(Settlement, ChangesNeitherFlag0NorWord1)
{
    pend(5, 0x11, 0x22);
    record(1, "F", 5).flag0 = 1;
    record(1, "F", 5).word1 = 3;

    settle(5, 1, 1);

    EXPECT_EQ(record(1, "F", 5).flag0, 1);
    EXPECT_EQ(record(1, "F", 5).word1, 3);
    EXPECT_EQ(record(1, "F", 5).writePending, 0);
}

TEST_F(Settlement, IgnoresUnknownTypesAndCountsBelowOne)
{
    settle(5, 1, 1, "X");
    settle(5, 0, 1);
    settle(5, -1, 0);

    EXPECT_EQ(cacheKeys(), "");
}
