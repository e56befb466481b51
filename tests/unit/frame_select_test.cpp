// SPDX-License-Identifier: MIT
// Which encoder serves which register type.
#include "korvane_dx4/frame_select.h"

#include "frame_recorder.h"

#include <ostream>

namespace {

struct SelectRow {
    const char *name;
    const char *type;
    int address;
    int count;
    const char *bytes;
};

// Without it a row is named by the bytes of its pointers, anew in every run.
void PrintTo(const SelectRow &row, std::ostream *out)
{
    *out << row.name;
}

class ReadSelection : public FrameRecorder, public ::testing::WithParamInterface<SelectRow> { };

TEST_P(ReadSelection, PicksTheEncoderByType)
{
    const SelectRow &row = GetParam();
    VARIABLE var = variable(row.type, row.address, row.count);

    getReadFrame(var);

    EXPECT_EQ(lastFrame(), row.bytes);
    EXPECT_EQ(driver.sendFrames.size(), 1);
}

std::string rowName(const ::testing::TestParamInfo<SelectRow> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Types, ReadSelection,
    ::testing::Values(SelectRow { "FuIsOneWord", "FU", 0, 1, "01 03 20 01 00 01 DE 0A" },
                      SelectRow { "SwIsOneWord", "SW", 5, 1, "01 03 20 05 00 01 9F CB" },
                      SelectRow { "FIsAWord", "F", 0x0A0C, 1, "01 03 FC 0C 00 01 74 59" },
                      SelectRow { "DIsAWord", "D", 3, 1, "01 03 D0 03 00 01 4C CA" },
                      SelectRow { "CwIsAWord", "CW", 0, 1, "01 03 D0 00 00 01 BC CA" },
                      SelectRow { "FreIsAWord", "FRE", 7, 1, "01 03 D0 07 00 01 0D 0B" },
                      SelectRow { "LowerCaseFuIsAWord", "fu", 0, 1, "01 03 D0 00 00 01 BC CA" },
                      SelectRow { "EmptyTypeIsAWord", "", 3, 1, "01 03 D0 03 00 01 4C CA" }),
    rowName);

class WriteSelection : public FrameRecorder, public ::testing::WithParamInterface<SelectRow> { };

TEST_P(WriteSelection, PicksTheEncoderByType)
{
    const SelectRow &row = GetParam();
    VARIABLE var = variable(row.type, row.address, row.count);

    getWriteFrame(var);

    EXPECT_EQ(lastFrame(), row.bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Types, WriteSelection,
    ::testing::Values(SelectRow { "CwIsOneWord", "CW", 0, 1, "01 06 10 01 12 34 D1 BD" },
                      SelectRow { "FreIsOneWord", "FRE", 2, 1, "01 06 10 04 12 34 C1 BC" },
                      SelectRow { "TwoCwGiveNoFrame", "CW", 0, 2, "" },
                      SelectRow { "NoCwGivesNoFrame", "CW", 0, 0, "" },
                      SelectRow { "TwoFreGiveNoFrame", "FRE", 0, 2, "" },
                      SelectRow { "FIsAWord", "F", 5, 1, "01 06 F0 05 12 34 A7 BC" },
                      SelectRow { "NoFUsesFunction16", "F", 5, 0, "01 10 F0 05 00 00 00 49 89" },
                      SelectRow { "DIsAWordAtRegister0", "D", 5, 1, "01 06 00 00 12 34 84 BD" },
                      SelectRow { "SwIsAWordAtRegister0", "SW", 0, 1, "01 06 00 00 12 34 84 BD" },
                      SelectRow { "FuIsAWordAtRegister0", "FU", 0, 1, "01 06 00 00 12 34 84 BD" },
                      SelectRow { "LowerCaseCwIsAWordAtRegister0", "cw", 0, 1,
                                  "01 06 00 00 12 34 84 BD" }),
    rowName);

} // namespace
