// SPDX-License-Identifier: MIT
// The examples of the service over a simulated inverter.
#include "child_process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

class ServiceExamples : public ::testing::Test {
protected:
    ServiceExamples()
        : inverter({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0" })
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
