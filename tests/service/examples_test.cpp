// SPDX-License-Identifier: MIT
// The examples over a simulated inverter.
#include "child_process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

class ServiceExamples : public ::testing::Test {
protected:
    ServiceExamples()
        : inverter({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0", "--stations", "1-2" })
    {
        const std::string opened = inverter.readLine();
        const std::size_t begin = opened.find("/dev/");
        device = opened.substr(begin, opened.find('"', begin) - begin);
    }

    ChildProcess inverter;
    std::string device;
};

} // namespace

TEST_F(ServiceExamples, LoggerPrintsWhatIsPolled)
{
    ChildProcess logger({ LOGGER_FILE, device, DRIVER_FILE });

    EXPECT_NE(logger.readLineWith("station 1, D 9: 0"), "");
}

TEST_F(ServiceExamples, WriteEndsWithItsOutcome)
{
    int code = -1;

    const std::string output = outputOf({ WRITE_FILE, device, DRIVER_FILE, "2500" }, &code);

    EXPECT_EQ(output, "station 1, FRE 0 (0x1002): confirmed\n");
    EXPECT_EQ(code, 0);
}

TEST_F(ServiceExamples, SignalStopsTheDrive)
{
    ChildProcess host({ STOP_FILE, device, DRIVER_FILE });
    EXPECT_EQ(host.readLine(), "the line is open");

    host.signal(SIGTERM);

    EXPECT_NE(inverter.readLineWith("01 06 10 01 00 00"), "");
    EXPECT_NE(host.readLineWith("all stops confirmed"), "");
    EXPECT_EQ(host.wait(), 0);
}

TEST_F(ServiceExamples, PluginRuntimePollsWithTheBoundaryAlone)
{
    int code = -1;

    const std::string output = outputOf({ PLUGIN_RUNTIME_FILE, device, DRIVER_FILE }, &code);

    EXPECT_EQ(output, "10 of 10 replies accepted, D 4 = 566\n");
    EXPECT_EQ(code, 0);
}

#ifdef WINDOW_FILE
TEST_F(ServiceExamples, WindowPollsWhatItShows)
{
    const ChildProcess window(
        { "env", "QT_QPA_PLATFORM=offscreen", WINDOW_FILE, device, DRIVER_FILE });

    EXPECT_NE(inverter.readLineWith("01 03 D0 00 00 01"), "");
}
#endif

#ifdef TOOL_FILE
TEST_F(ServiceExamples, ConfigurationNamesWhatTheSimulatedDriveHas)
{
    int code = -1;

    const std::string output =
        outputOf({ TOOL_FILE, "watch", "--driver", DRIVER_FILE, "--config",
                   EXAMPLE_FOLDER "/two-drives.toml", "--port", device, "--rounds", "1", "--csv" },
                 &code);

    EXPECT_NE(output.find("DC link"), std::string::npos) << output;
    EXPECT_NE(output.find(",566,"), std::string::npos) << output;
    EXPECT_NE(output.find("25.0"), std::string::npos) << output;
    EXPECT_EQ(code, 0);
}
#endif

#ifdef EVENT_LOOP_FILE
TEST_F(ServiceExamples, EventLoopLoggerPrintsWhatIsPolledAndStopsTheDrive)
{
    ChildProcess host({ EVENT_LOOP_FILE, device, DRIVER_FILE });
    EXPECT_NE(host.readLineWith("D 9: 0"), "");

    host.signal(SIGTERM);

    EXPECT_NE(inverter.readLineWith("01 06 10 01 00 00"), "");
    EXPECT_NE(host.readLineWith("all stops confirmed"), "");
    EXPECT_EQ(host.wait(), 0);
}
#endif
