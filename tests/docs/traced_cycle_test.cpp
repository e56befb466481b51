// SPDX-License-Identifier: MIT
// The sequences that docs/cycle.md traces, played through the driver.
#include "driver_fixture.h"

#include <fstream>

namespace {

/// The frames of the block under this heading of docs/cycle.md, without their comments.
std::vector<std::string> tracedFrames(const std::string &heading)
{
    std::ifstream document(KORVANE_CYCLE_DOCUMENT);
    std::vector<std::string> frames;
    std::string line;
    while (std::getline(document, line) && line != heading) { }
    while (std::getline(document, line) && line != "```frame") { }
    while (std::getline(document, line) && line != "```")
        frames.push_back(line.substr(0, line.find("  ")));
    return frames;
}

class TracedCycle : public DriverFixture {
protected:
    TracedCycle()
    {
        init("1#0#0#3#16");
        QList<KEY_ADDRESS> wanted = { keyAddress(1, "D", 0, 4), keyAddress(1, "F", 2572, 2) };
        dx4.addrMerge(wanted);
    }

    // What the traced inverter answers: an echo, or its two blocks.
    static std::string answerTo(const std::string &request)
    {
        if (request.substr(3, 2) == "06")
            return request;
        return request.substr(6, 2) == "FC" ? "01 03 04 00 05 01 F4 EA 25"
                                            : "01 03 08 13 88 00 7B 02 1C 00 2A 79 6D";
    }
};

TEST_F(TracedCycle, WriteConditionReadAndCyclicReadsGoAsWritten)
{
    const std::vector<std::string> frames =
        tracedFrames("## Traced: write, condition read, cyclic reads");
    ASSERT_EQ(frames.size(), 10U);
    set(1, "FRE", 0, { 5000 });
    dx4.addConditionRead(keyAddress(1, "SW", 0, 1), 0);

    for (std::size_t i = 0; i < frames.size(); i += 2) {
        EXPECT_EQ(nextFrame(), frames[i]);
        EXPECT_EQ(reply(frames[i + 1]), 1);
    }

    const std::vector<std::string> expected = { "-1 -1 -1 0", "1 1 F 2572", "1 1 F 2573", "1 1 D 0",
                                                "1 1 D 1",    "1 1 D 2",    "1 1 D 3" };
    EXPECT_EQ(calls, expected);
}

TEST_F(TracedCycle, SevenWritesGoAsWritten)
{
    const std::vector<std::string> frames = tracedFrames("## Traced: seven writes");
    ASSERT_EQ(frames.size(), 9U);
    for (int i = 0; i < 7; ++i)
        set(1, "F", 258 + i, { 100 + i });

    for (const std::string &request : frames) {
        EXPECT_EQ(nextFrame(), request);
        EXPECT_EQ(reply(answerTo(request)), 1);
    }
}

TEST_F(TracedCycle, SilenceGoesAsWritten)
{
    QList<KEY_ADDRESS> wanted = { keyAddress(1, "F", 258, 1) };
    dx4.addrMerge(wanted);
    nextFrame();
    replyWithCrc("01 03 02 00 0A");
    calls.clear();
    std::vector<std::string> shown;
    insideCallback = [&](int, int, const QString &, int) { shown.push_back(data(1, "F", 258, 1)); };

    set(1, "F", 258, { 100 });
    std::vector<int> results;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(nextFrame(), "01 06 F1 02 00 64 1B 1D");
        results.push_back(reply(""));
    }

    EXPECT_EQ(results, (std::vector<int> { 8, 8, 2 }));
    EXPECT_EQ(calls, (std::vector<std::string> { "1 1 F 258", "1 1 F 258", "1 1 F 258" }));
    EXPECT_EQ(shown, (std::vector<std::string> { "0A 00", "0A 00", "0A 00" }));
}

} // namespace
