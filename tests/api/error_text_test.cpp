// SPDX-License-Identifier: MIT
// The line that tells the host which request a reply answered and how much came back.
#include "cycle_fixture.h"

namespace {

struct Line {
    const char *name;
    int station;
    const char *type;
    int address;
    int count;
    const char *reply;
    const char *expected;
};

class ErrorText : public CycleFixture, public ::testing::WithParamInterface<Line> {
protected:
    ErrorText() { init("1#0#0#3#100"); }
};

class ErrorTexts : public CycleFixture {
protected:
    ErrorTexts() { init("1#0#0#3#100"); }
};

} // namespace

TEST_P(ErrorText, NamesTheRequestAndTheBytesReceived)
{
    readOnce(GetParam().station, GetParam().type, GetParam().address, GetParam().count);
    nextFrame();

    reply(GetParam().reply);

    EXPECT_EQ(errorText.toStdString(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ErrorText,
    ::testing::Values(
        Line { "NothingReceived", 1, "D", 5, 2, "", "1#D5(2)(0)" },
        Line { "GoodReply", 3, "F", 258, 1, "03 03 02 00 07 80 46", "3#F258(1)(7)" },
        Line { "BadReply", 3, "F", 258, 1, "03 03 02 00 07 00 00", "3#F258(1)(7)" },
        Line { "FaultCode", 1, "FU", 0, 1, "01", "1#FU0(1)(1)" },
        Line { "PackedParameter", 1, "F", 2573, 1, "", "1#F2573(1)(0)" },
        Line { "NegativeStation", -1, "D", 5, 2, "", "-1#D5(2)(0)" },
        Line { "NegativeCount", 1, "D", 5, -2, "", "1#D5(-2)(0)" },
        Line { "NegativeAddress", 1, "D", -5, 2, "", "1#D-5(2)(0)" },
        Line { "ExceptionReply", 247, "SW", 0, 1, "F7 83 02 20 C3", "247#SW0(1)(5)" },
        Line { "LongReply", 1, "D", 0, 1, "00 01 02 03 04 05 06 07 08 09 0A 0B", "1#D0(1)(12)" },
        Line { "EmptyType", 1, "", 4, 1, "", "1#4(1)(0)" },
        // The texts are put in one after the other, so a placeholder in the type is filled next.
        Line { "PlaceholderInTheType", 7, "%1", 5, 2, "", "7#52(0)(%5)" }),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(ErrorTexts, NameTheWriteThatIsAnswered)
{
    set(2, "F", 5, { 1, 2, 3 });
    nextFrame();

    echo();

    EXPECT_EQ(errorText.toStdString(), "2#F5(3)(8)");
}

TEST_F(ErrorTexts, AreWrittenForEveryTry)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    silence();
    errorText = QStringLiteral("old");

    reply("00 00");

    EXPECT_EQ(errorText.toStdString(), "1#D5(1)(2)");
}

TEST_F(ErrorTexts, AreWrittenForARequestThatIsGivenUp)
{
    init("1#0#0#1#100");
    readOnce(1, "D", 5, 1);
    nextFrame();

    reply("00 00 00");

    EXPECT_EQ(errorText.toStdString(), "1#D5(1)(3)");
}

TEST_F(ErrorTexts, ReplaceTheOldTextEvenWithoutARequest)
{
    errorText = QStringLiteral("old");

    reply("00 00 00");

    EXPECT_EQ(errorText.toStdString(), "");
}

TEST_F(ErrorTexts, NameTheHeadOfTheFrames)
{
    readOnce(1, "D", 5, 1);
    nextFrame();
    state.sendFrames.prepend(FRAME_PRO(state.sendFrames.at(0)));
    state.sendFrames[0].var = variable(9, "SW", 3, 4);

    reply("00");

    EXPECT_EQ(errorText.toStdString(), "9#SW3(4)(1)");
}
