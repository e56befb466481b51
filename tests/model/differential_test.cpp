// SPDX-License-Identifier: MIT
// The built driver against the model, on random sequences of operations.
//
// KORVANE_SEED sets the first seed, KORVANE_OPERATIONS the number of operations.
#include "arguments.h"
#include "loaded_driver.h"
#include "operations.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

using model::Interpreter;

long numberFrom(const char *variable, long otherwise)
{
    const char *text = std::getenv(variable);
    return text ? std::atol(text) : otherwise;
}

std::vector<unsigned char> randomBytes(unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<unsigned char> bytes(500 + random() % 6000);
    for (unsigned char &byte : bytes)
        byte = static_cast<unsigned char>(random());
    return bytes;
}

class Differential : public ::testing::Test {
protected:
    LoadedDriver loaded;
    const std::vector<unsigned char> noBytes = std::vector<unsigned char>(64, 0);
    Interpreter player { loaded, noBytes.data(), noBytes.size() };
};

} // namespace

TEST(DifferentialRun, TheDriverAndTheModelAgreeAfterEveryOperation)
{
    const long wanted = numberFrom("KORVANE_OPERATIONS", 200000);
    const unsigned firstSeed =
        static_cast<unsigned>(numberFrom("KORVANE_SEED", 20240) & 0xFFFFFFFFL);
    long played = 0;
    for (unsigned seed = firstSeed; played < wanted;) {
        const LoadedDriver loaded; // fresh from time to time, to cover its start and end
        for (int script = 0; script < 50 && played < wanted; ++script, ++seed) {
            const std::vector<unsigned char> bytes = randomBytes(seed);

            Interpreter player(loaded, bytes.data(), bytes.size());
            const bool agreed = player.play();

            ASSERT_TRUE(agreed) << "KORVANE_SEED=" << seed << '\n' << player.report();
            played += player.operations();
        }
    }
    RecordProperty("operations", static_cast<int>(played));
}

TEST_F(Differential, ReportsAChangedNumber)
{
    player.pair().model.state.retryLimit = 3;

    const bool agreed = player.step();

    EXPECT_FALSE(agreed);
    EXPECT_NE(player.report().find("retryLimit: driver 0, model 3"), std::string::npos)
        << player.report();
}

TEST_F(Differential, ReportsAChangedByteInALongList)
{
    for (int i = 0; i < 300; ++i) {
        player.pair().each([&](auto &side) { side.state.writeList.append(VARIABLE()); });
    }
    player.pair().real.state.writeList[299].data[1023] = 9;
    player.pair().each([](auto &side) { side.state.tryCount = 9; });

    const bool agreed = player.step();

    EXPECT_FALSE(agreed);
    EXPECT_NE(player.report().find("writeList[299]"), std::string::npos) << player.report();
}

TEST_F(Differential, ReportsALostCallback)
{
    const unsigned char bytes[] = { 30, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 };
    Interpreter writer(loaded, bytes, sizeof bytes);
    _DATA_ monitored;
    monitored.station = 1;
    monitored.regType = QStringLiteral("F");
    monitored.flags = 1;
    monitored.value[0] = 77;
    writer.pair().each([&](auto &side) { side.state.dataAreas.append(monitored); });
    writer.pair().model.dx4.setAddrValueChangeCallBack([](int, int, QString &, int) {});

    const bool agreed = writer.step();

    EXPECT_FALSE(agreed);
    EXPECT_NE(writer.report().find("callbacks of the driver:\n    0 1 \"F\" 0 saw 4d00"),
              std::string::npos)
        << writer.report();
}

TEST_F(Differential, ReportsAnotherErrorText)
{
    model::Outcome real;
    model::Outcome expected;
    real.add("error text", QStringLiteral("1#D5(2)(0)"));
    expected.add("error text", QStringLiteral("1#D5(2)(1)"));

    const std::string found = real.differencesTo(expected);

    EXPECT_EQ(found, "  error text: driver \"1#D5(2)(0)\", model \"1#D5(2)(1)\"\n");
}

TEST_F(Differential, ReportsAHeldListThatWasWrittenInto)
{
    player.pair().real.state.readList.append(VARIABLE());
    model::Snapshot held(player.pair().real.state, player.pair().model.state);
    // What a driver would do that writes past the sharing of its own list.
    const_cast<VARIABLE &>(held.ofReal.readList.constFirst()).count = 5;

    const bool unchanged = held.isUnchanged();

    EXPECT_FALSE(unchanged);
}

TEST_F(Differential, TellsFramesApartByTheirSentBytesOnly)
{
    FRAME_PRO frame;
    frame.sendLength = 8;
    FRAME_PRO otherwiseBehind = frame;
    otherwiseBehind.frame[8] = 1;
    FRAME_PRO otherwiseInside = frame;
    otherwiseInside.frame[7] = 1;

    const bool alike = model::same(frame, otherwiseBehind);
    const bool differs = !model::same(frame, otherwiseInside);

    EXPECT_TRUE(alike);
    EXPECT_TRUE(differs);
}
