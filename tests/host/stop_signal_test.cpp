// SPDX-License-Identifier: MIT
// A signal ends the loop, not the program: the stop goes out first.
#include "host/writes/stop_signal.h"

#include "child_process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>

#include <poll.h>
#include <unistd.h>

using dx4::host::StopSignal;
using std::chrono::hours;
using std::chrono::milliseconds;

namespace {

/// A shell that starts the tests in the background has them ignore what a terminal sends; so would
/// every program that they start.
class TerminalSignals : public ::testing::Environment {
public:
    void SetUp() override
    {
        for (int number : { SIGINT, SIGQUIT, SIGHUP })
            std::signal(number, SIG_DFL);
    }
};

const auto *const terminalSignals = ::testing::AddGlobalTestEnvironment(new TerminalSignals);

bool isReadable(int descriptor)
{
    pollfd wake {};
    wake.fd = descriptor;
    wake.events = POLLIN;
    return poll(&wake, 1, 0) == 1;
}

/// The example host over a simulated inverter, once it has set a frequency.
class SignalledHost : public ::testing::TestWithParam<int> {
protected:
    SignalledHost()
        : inverter({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0" })
        , host({ MINIMAL_HOST_FILE, device(), DRIVER_FILE }, true)
    {
        EXPECT_NE(inverter.readLineWith("01 06 10 02"), "");
    }

    std::string device()
    {
        const std::string opened = inverter.readLine();
        const std::size_t begin = opened.find("/dev/");
        return opened.substr(begin, opened.find('"', begin) - begin);
    }

    ChildProcess inverter;
    ChildProcess host;
};

} // namespace

TEST_P(SignalledHost, SendsTheStopAndEndsWithItsConfirmation)
{
    host.signal(GetParam());

    EXPECT_NE(inverter.readLineWith("01 06 10 01 00 00"), "");
    EXPECT_NE(host.readLineWith("all stops confirmed"), "");
    host.readAll();
    EXPECT_EQ(host.wait(), 0);
}

class SignalledHostAlone : public SignalledHost { };

TEST_P(SignalledHostAlone, SaysAndEndsWithAStopThatIsNotConfirmed)
{
    inverter.writeLine("unplug");
    EXPECT_NE(inverter.readLineWith("unplugged"), "");

    host.signal(GetParam());

    EXPECT_NE(host.readLineWith("STOP NOT CONFIRMED by station 1: it may still run"), "");
    host.readAll();
    EXPECT_EQ(host.wait(), 1);
}

INSTANTIATE_TEST_SUITE_P(EverySignal, SignalledHost, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto &row) {
                             return std::string(row.param == SIGINT        ? "Interrupt"
                                                    : row.param == SIGTERM ? "Terminate"
                                                                           : "HangUp");
                         });

INSTANTIATE_TEST_SUITE_P(Terminate, SignalledHostAlone, ::testing::Values(SIGTERM));

TEST(StopSignalTest, TheFirstSignalIsKept)
{
    const StopSignal signal;
    const bool before = signal.hasCome();

    std::raise(SIGTERM);
    std::raise(SIGINT);

    EXPECT_FALSE(before);
    EXPECT_TRUE(signal.hasCome());
    EXPECT_EQ(signal.number(), SIGTERM);
}

TEST(StopSignalTest, TheDescriptorBecomesReadable)
{
    const StopSignal signal;
    const bool before = isReadable(signal.descriptor());

    std::raise(SIGHUP);

    EXPECT_FALSE(before);
    EXPECT_TRUE(isReadable(signal.descriptor()));
}

TEST(StopSignalTest, ASignalEndsTheWait)
{
    StopSignal signal;
    // It comes while the wait is on, or right before it: both end it.
    std::signal(SIGALRM, [](int) { std::raise(SIGTERM); });
    ualarm(10'000, 0);

    signal.wait(hours(1));

    std::signal(SIGALRM, SIG_DFL);
    EXPECT_EQ(signal.number(), SIGTERM);
}

TEST(StopSignalTest, ASignalEndsOneWaitOfEachUser)
{
    StopSignal first;
    StopSignal second;
    std::raise(SIGTERM);

    first.wait(hours(1));
    const auto before = std::chrono::steady_clock::now();
    first.wait(milliseconds(1)); // the loop that stops the drives pauses too
    const auto passed = std::chrono::steady_clock::now() - before;
    second.wait(hours(1));

    EXPECT_GE(passed, milliseconds(1));
    EXPECT_TRUE(first.hasCome());
    EXPECT_TRUE(second.hasCome());
}

TEST(StopSignalTest, AUserThatComesAfterTheSignalIsWokenToo)
{
    const StopSignal first;
    std::raise(SIGTERM);
    StopSignal late;

    late.wait(hours(1));

    EXPECT_EQ(late.number(), SIGTERM);
}

TEST(StopSignalTest, CountsWhatComesBehindTheFirst)
{
    const StopSignal signal;
    EXPECT_EQ(signal.count(), 0);

    std::raise(SIGTERM);
    std::raise(SIGINT);

    EXPECT_EQ(signal.number(), SIGTERM);
    EXPECT_EQ(signal.count(), 2);
}

TEST(StopSignalTest, TheInterruptedCallKeepsItsError)
{
    const StopSignal signal;
    const std::uint64_t almostFull = 0xFFFFFFFFFFFFFFFE; // the handler's own write fails then
    ASSERT_EQ(write(signal.descriptor(), &almostFull, sizeof almostFull), 8);
    errno = ENOENT;

    std::raise(SIGTERM);

    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(signal.number(), SIGTERM);
}

TEST(StopSignalTest, WhatCameForAnEarlierUserIsForgotten)
{
    {
        const StopSignal earlier;
        std::raise(SIGTERM);
    }

    const StopSignal signal;

    EXPECT_FALSE(signal.hasCome());
    EXPECT_EQ(signal.number(), 0);
    EXPECT_EQ(signal.count(), 0);
    EXPECT_FALSE(isReadable(signal.descriptor()));
}

TEST(StopSignalTest, AnIgnoredSignalStaysIgnored)
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const StopSignal signal;

        std::raise(SIGHUP);

        EXPECT_FALSE(signal.hasCome());
    }
    std::signal(SIGHUP, SIG_DFL);
}

TEST(StopSignalTest, TheDescriptorIsOneForTheLifeOfTheProcess)
{
    int first = -1;
    {
        const StopSignal signal;
        first = signal.descriptor();
    }

    const StopSignal signal;

    EXPECT_GE(first, 0);
    EXPECT_EQ(signal.descriptor(), first);
}

TEST(StopSignalTest, EachOfTheSignalsIsGivenBack)
{
    {
        const StopSignal signal;
    }

    for (int number : { SIGINT, SIGTERM, SIGHUP }) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        EXPECT_EQ(action.sa_handler, SIG_DFL) << number;
    }
}

TEST(StopSignalTest, TheLastOneGivesTheSignalsBack)
{
    struct sigaction action = {};
    {
        const StopSignal outer;
        {
            const StopSignal inner;
        }
        sigaction(SIGTERM, nullptr, &action);
        EXPECT_NE(action.sa_handler, SIG_DFL);
    }

    sigaction(SIGTERM, nullptr, &action);

    EXPECT_EQ(action.sa_handler, SIG_DFL);
}
