// SPDX-License-Identifier: MIT
// The registers of an inverter: limits, values at the start, what cannot be written or read.
#include "simulator/inverter.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

struct ParameterRow {
    const char *name;
    std::uint16_t address;
    int lowest;
    int highest;
    int initial;
};

class Parameters : public ::testing::TestWithParam<ParameterRow> { };

} // namespace

TEST(InverterRegisters, ShowWhatTheyAreHeldAt)
{
    Inverter inverter;
    inverter.hold(0xD000, 0xBEEF);
    const int held = inverter.read(0xD000);

    inverter.release(0xD000);

    EXPECT_EQ(held, 0xBEEF);
    EXPECT_EQ(inverter.read(0xD000), 0);
}

TEST_P(Parameters, HaveLimitsAndAValueAtTheStart)
{
    const Inverter inverter;
    const auto accepts = [&inverter](int value) {
        return value < 0 || value > 0xFFFF
            ? false
            : inverter.accepts(GetParam().address, static_cast<std::uint16_t>(value));
    };

    EXPECT_EQ(inverter.read(GetParam().address), GetParam().initial);
    EXPECT_FALSE(accepts(GetParam().lowest - 1));
    EXPECT_TRUE(accepts(GetParam().lowest));
    EXPECT_TRUE(accepts(GetParam().highest));
    EXPECT_FALSE(accepts(GetParam().highest + 1));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Parameters,
    ::testing::Values(ParameterRow { "HighestFrequency", 0xF800, 100, 40000, 5000 },
                      ParameterRow { "LowestFrequency", 0xF801, 0, 40000, 0 },
                      ParameterRow { "AccelerationTime", 0xF802, 0, 36000, 50 },
                      ParameterRow { "DecelerationTime", 0xF803, 0, 36000, 50 },
                      ParameterRow { "RatedVoltage", 0xF804, 100, 480, 400 },
                      ParameterRow { "RatedCurrent", 0xF805, 1, 9999, 100 },
                      ParameterRow { "RatedFrequency", 0xF806, 100, 40000, 5000 },
                      ParameterRow { "LoadTorque", 0xF807, 0, 150, 40 },
                      ParameterRow { "CommunicationTime", 0xF808, 0, 9999, 0 },
                      ParameterRow { "AnyOther", 0xF809, 0, 65535, 0 },
                      ParameterRow { "OfAnotherGroup", 0xF708, 0, 65535, 0 },
                      ParameterRow { "SetFrequency", 0x1002, 0, 40000, 0 }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(InverterRegisters, TakeNoValueWhereNoneCanBeWritten)
{
    Inverter inverter;
    inverter.remove(0xF003);

    EXPECT_FALSE(inverter.accepts(0x0007, 0)); // no register
    EXPECT_FALSE(inverter.accepts(0x2000, 0)); // read only
    EXPECT_FALSE(inverter.accepts(0xF003, 0)); // taken away
    EXPECT_TRUE(inverter.accepts(0xF004, 0));
}

TEST(InverterRegisters, KeepTheirValueWhenOneOutsideTheLimitsIsWritten)
{
    Inverter inverter;

    inverter.write(0xF804, 481);

    EXPECT_EQ(inverter.read(0xF804), 400);
}

TEST(InverterRegisters, ReadZeroWhereNothingCanBeRead)
{
    Inverter inverter;
    inverter.write(0x1002, 3000);

    EXPECT_EQ(inverter.read(0x1002), 0); // write only
    EXPECT_EQ(inverter.read(0xD00E), 0); // D14, without a meaning
    EXPECT_EQ(inverter.read(0xD026), 0); // behind the monitor values
    EXPECT_EQ(inverter.read(0x0007), 0);
}
