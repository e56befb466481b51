// SPDX-License-Identifier: MIT
// A reader who does not read holds up neither the stations nor the end.
#include "master.h"
#include "served_line.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace {

// More than a pipe and what waits in the program hold: some 90 bytes each way.
constexpr int manyRequests = 7300;

const std::vector<std::string> fastLine = { "--speed", "0", "--turnaround", "0" };

std::vector<std::string> onFastLine(const std::vector<std::string> &arguments)
{
    std::vector<std::string> all = fastLine;
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

/// How many of so many requests were answered.
int answered(const std::string &device, int requests)
{
    Master master(device);
    int count = 0;
    for (int i = 0; i < requests; ++i)
        count += master.read(0x2001) == 0 ? 1 : 0;
    return count;
}

/// Whether one of many requests is answered.
bool isAnsweredInTheEnd(const std::string &device)
{
    constexpr int patience = 100; // requests, each with the timeout of a master
    for (int i = 0; i < patience; ++i) {
        if (answered(device, 1) == 1)
            return true;
    }
    return false;
}

/// A named pipe without a reader.
std::string pipeNamed(const std::string &name)
{
    const std::string path = ::testing::TempDir() + std::to_string(getpid()) + name;
    unlink(path.c_str());
    mkfifo(path.c_str(), 0600);
    return path;
}

/// Lines up to the one with `part`, which is not counted; that one in `last`.
int linesBefore(ChildProcess &process, const std::string &part, std::string *last)
{
    int count = 0;
    for (*last = process.readLine(); !last->empty(); *last = process.readLine(), ++count) {
        if (last->find(part) != std::string::npos)
            return count;
    }
    return -1;
}

} // namespace

TEST(StalledReaderOfTheSimulator, StationsAnswerAndTerminationEndsIt)
{
    for (const int signal : { SIGTERM, SIGINT }) {
        ServedLine line(onFastLine({ "--json" }));

        EXPECT_EQ(answered(line.device, manyRequests), manyRequests);
        line.process.signal(signal);

        EXPECT_EQ(line.process.wait(), 0);
    }
}

TEST(StalledReaderOfTheSimulator, SecondTerminationChangesNothing)
{
    ServedLine line(onFastLine({ "--json" }));
    ASSERT_EQ(answered(line.device, 1000), 1000);

    line.process.signal(SIGTERM);
    line.process.signal(SIGTERM);

    EXPECT_EQ(line.process.wait(), 0);
}

TEST(StalledReaderOfTheSimulator, HearsHowManyLinesItMissed)
{
    ServedLine line(onFastLine({ "--json" }));
    ASSERT_EQ(answered(line.device, manyRequests), manyRequests);

    std::string told;
    const int shown = linesBefore(line.process, "not-shown", &told);

    ASSERT_LT(shown, 2 * manyRequests);
    EXPECT_EQ(told,
              R"({"event":"not-shown","lines":)" + std::to_string(2 * manyRequests - shown) + "}");
    EXPECT_EQ(line.command("get F8.0"), R"({"event":"answer","ok":true,"text":"F8.0 5000"})");
    EXPECT_EQ(line.quit(), 0);
}

TEST(StalledReaderOfTheSimulator, PlainAnswersAreCountedToo)
{
    ServedLine line;
    constexpr int manyCommands = 200000;
    const std::string command = "get F8.0\n";
    for (int i = 0; i < manyCommands / 1000; ++i) {
        std::string block;
        for (int n = 0; n < 1000; ++n)
            block += command;
        block.pop_back();
        line.process.writeLine(block);
    }
    ASSERT_TRUE(isAnsweredInTheEnd(line.device)) << "once the commands are run";

    int accounted = 0;
    int gaps = 0;
    while (accounted < manyCommands) {
        const std::string said = line.process.readLine();
        ASSERT_FALSE(said.empty()) << accounted;
        const bool isGap = said.find(" lines not shown") != std::string::npos;
        gaps += isGap ? 1 : 0;
        accounted += isGap ? std::stoi(said) : 1;
    }
    EXPECT_EQ(accounted, manyCommands);
    EXPECT_GE(gaps, 1);
}

TEST(StalledReaderOfTheSimulator, StallsOfStandardErrorDoNotHoldItUp)
{
    // Both streams are one pipe that nobody reads, and the log is lost, which is said there.
    ChildProcess process({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0", "--turnaround", "0",
                           "--log", "/dev/full" },
                         true);
    const std::string first = process.readLine();
    const std::size_t begin = first.find('/');

    EXPECT_EQ(answered(first.substr(begin, first.find('"', begin) - begin), manyRequests),
              manyRequests);
    process.signal(SIGTERM);

    EXPECT_EQ(process.wait(), 1);
}

TEST(StalledReaderOfTheSimulator, LogAndCaptureInPipesWithoutReader)
{
    const std::string log = pipeNamed("stalled.log");
    const std::string capture = pipeNamed("stalled.pcap");
    ChildProcess process({ SIMULATOR_FILE, "--pty", "--speed", "0", "--turnaround", "0", "--log",
                           log, "--pcap", capture },
                         true);
    const std::string first = process.readLine();
    const int requests = 20000; // some 30 bytes each in the log

    EXPECT_EQ(answered(first.substr(first.find('/')), requests), requests);
    process.signal(SIGTERM);
    const std::string said = process.readAll();

    EXPECT_NE(said.find(log + ": its reader did not take the last "), std::string::npos) << said;
    EXPECT_NE(said.find(capture + ": its reader did not take the last "), std::string::npos);
    EXPECT_NE(said.find(" pieces behind them\n"), std::string::npos);
    EXPECT_EQ(process.wait(), 1);
}

TEST(StalledReaderOfTheSimulator, CaptureThatCannotGrowEndsWithAWholeFrame)
{
    const std::string capture = ::testing::TempDir() + std::to_string(getpid()) + "small.pcap";
    ChildProcess process(
        { "/bin/sh", "-c",
          "ulimit -f 2; exec " SIMULATOR_FILE " --pty --speed 0 --turnaround 0 --pcap " + capture },
        true);
    const std::string first = process.readLine();
    const std::string device = first.substr(first.find('/'));

    EXPECT_EQ(answered(device, 10), 10);
    const std::string said = process.readLine();
    EXPECT_EQ(answered(device, 1), 1);
    process.signal(SIGTERM);

    EXPECT_EQ(said, "dx4-sim: " + capture + ": File too large; nothing more is written there");
    EXPECT_EQ(process.wait(), 1);
    // Of two blocks of 512 bytes: the head of 24, nine pairs of 52 and 51, and one request.
    EXPECT_EQ(contentOf(capture).size(), 1003U);
}
