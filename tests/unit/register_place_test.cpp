// SPDX-License-Identifier: MIT
// Internal addresses and Modbus registers, both ways.
#include "wire/register_place.h"

#include <gtest/gtest.h>

#include <vector>

using namespace dx4;

namespace {

/// A register of the drive in both forms.
struct Pair {
    RegisterType type;
    int address;
    int modbusRegister;
};

const std::vector<Pair> pairs = {
    { TypeF, 0, 0xF000 },
    { TypeF, 255, 0xF0FF },
    { TypeF, 9 * 256, 0xF900 },
    { TypeF, 10 * 256, 0xFC00 },
    { TypeF, 10 * 256 + 13, 0xFC0D },
    { TypeD, 0, 0xD000 },
    { TypeD, 255, 0xD0FF },
    { TypeCw, 0, 0x1001 },
    { TypeFre, 0, 0x1002 },
    { TypeSw, 0, 0x2000 },
    { TypeFu, 0, 0x2001 },
};

} // namespace

TEST(RegisterPlace, EachAddressHasItsRegisterAndBack)
{
    for (const Pair &pair : pairs) {
        EXPECT_EQ(modbusRegister(pair.type, pair.address), pair.modbusRegister);
        const auto place = placeOf(pair.modbusRegister);
        ASSERT_TRUE(place.has_value()) << pair.modbusRegister;
        EXPECT_EQ(place->type, pair.type) << pair.modbusRegister;
        EXPECT_EQ(place->address, pair.address) << pair.modbusRegister;
    }
}

TEST(RegisterPlace, NoTypeOrGroupHasNoRegister)
{
    EXPECT_EQ(modbusRegister(UnknownType, 0), -1);
    EXPECT_EQ(modbusRegister(TypeF, -1), -1);
    EXPECT_EQ(modbusRegister(TypeF, 11 * 256), -1);
}

TEST(RegisterPlace, RegistersBesideThoseOfATypeHaveNoPlace)
{
    for (const int none : { -1, 0, 0x1000, 0x1003, 0x1FFF, 0x2002, 0xCFFF, 0xD100, 0xEFFF, 0xFA00,
                            0xFBFF, 0xFD00, 0x10000, -0x1000 })
        EXPECT_FALSE(placeOf(none).has_value()) << none;
}

TEST(RegisterPlace, TheMapHasAsManyRegistersAsTypesAndGroupsHave)
{
    int found = 0;
    for (int number = 0; number <= 0xFFFF; ++number)
        found += placeOf(number).has_value() ? 1 : 0;

    EXPECT_EQ(found, 4 + 256 + 11 * 256) << "four single ones, D, and the groups of F";
}
