// SPDX-License-Identifier: MIT
// The drive's notation and the registers it means.
#include "host/link/notation.h"

#include <gtest/gtest.h>

using namespace dx4::host;

struct NotationRow {
    const char *name;
    const char *regType;
    int address;
    const char *full;
};

class Notation : public ::testing::TestWithParam<NotationRow> { };

TEST_P(Notation, ShowsBothForms)
{
    const NotationRow &row = GetParam();

    const QString full = fullAddress(QString::fromLatin1(row.regType), row.address);

    EXPECT_EQ(full.toStdString(), row.full);
}

INSTANTIATE_TEST_SUITE_P(
    Types, Notation,
    ::testing::Values(NotationRow { "FirstParameter", "F", 0x0000, "F 0.0 (0xF000)" },
                      NotationRow { "LastOfGroup9", "F", 0x090B, "F 9.11 (0xF90B)" },
                      NotationRow { "LastOfGroupC", "F", 0x0A0D, "F c.13 (0xFC0D)" },
                      NotationRow { "GroupBeyondC", "F", 0x0B01, "F b.1" },
                      NotationRow { "Monitor", "D", 31, "D 31 (0xD01F)" },
                      NotationRow { "ControlWord", "CW", 0, "CW 0 (0x1001)" },
                      NotationRow { "Frequency", "FRE", 0, "FRE 0 (0x1002)" },
                      NotationRow { "StatusWord", "SW", 0, "SW 0 (0x2000)" },
                      NotationRow { "FaultCode", "FU", 0, "FU 0 (0x2001)" },
                      NotationRow { "UnknownType", "f", 3, "f 3" }),
    [](const auto &tested) { return tested.param.name; });
