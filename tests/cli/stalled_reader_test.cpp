// SPDX-License-Identifier: MIT
// A reader that does not read holds up neither the line nor the stop.
#include "bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int patience = 30000; // ms

/// A named pipe that is full from the beginning and takes nothing until somebody reads.
class FullPipe {
public:
    explicit FullPipe(const std::string &path)
    {
        mkfifo(path.c_str(), 0600);
        m_descriptor = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        fcntl(m_descriptor, F_SETPIPE_SZ, 4096);
        while (write(m_descriptor, ".", 1) == 1)
            ;
    }
    ~FullPipe() { close(m_descriptor); }
    FullPipe(const FullPipe &) = delete;
    FullPipe &operator=(const FullPipe &) = delete;

    /// Reads until the text has come, the filling left out.
    std::string readUntil(const std::string &text)
    {
        std::string whole;
        char part[4096];
        pollfd waiting = { m_descriptor, POLLIN, 0 };
        while (whole.find(text) == std::string::npos && poll(&waiting, 1, patience) > 0) {
            const ssize_t count = read(m_descriptor, part, sizeof part);
            whole.append(part, static_cast<std::size_t>(count));
        }
        whole.erase(0, std::min(whole.find_first_not_of('.'), whole.size()));
        return whole;
    }

private:
    int m_descriptor = -1;
};

const char *const register17 = "01 03 02 00 11 CRC";
const char *const stopEcho = "01 06 10 01 00 00 CRC";

void writePlant(Bench &bench)
{
    bench.run("printf '[stop]\\ncontrol_word = 0\\n[[station]]\\naddress = 1\\n' >plant.toml");
}

} // namespace

TEST(StalledReader, LineIsPolledAndTheStopSent)
{
    for (const char *where : { ">full", "2>full", ">full 2>full" }) {
        for (const int signal : { SIGINT, SIGTERM }) {
            Bench bench;
            bench.fake({ register17, stopEcho });
            writePlant(bench);
            FullPipe pipe(bench.folder() + "/full");
            ChildProcess watch(bench.shell(
                std::string("exec dx4 watch --json --config plant.toml D 0 SW ") + where));

            EXPECT_TRUE(bench.awaitRequests(3, 100)) << where;
            watch.signal(signal);
            EXPECT_TRUE(bench.awaitRequests(6, 1)) << where;

            EXPECT_EQ(watch.wait(), 0) << where;
        }
    }
}

TEST(StalledReader, ChangesThatFoundNoReaderAreCounted)
{
    Bench bench;
    FullPipe pipe(bench.folder() + "/full");
    ChildProcess inverter({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0", "--turnaround", "0",
                            "--stations", "1,2" });
    const std::string opened = inverter.readLine();
    const std::size_t begin = opened.find("/dev/");
    const std::string device = opened.substr(begin, opened.find('"', begin) - begin);
    std::string registers;
    for (const char *station : { "1", "2" }) {
        registers += std::string(" ") + station + ":D 0-31";
        for (int group = 0; group < 7; ++group)
            registers += std::string(" ") + station + ":F " + std::to_string(group) + ".0-"
                + std::to_string(group) + ".13";
    }
    ChildProcess watch(
        bench.shell("exec dx4 watch --json --port " + device + registers + " >full"));
    const auto awaitRound = [&inverter] {
        return !inverter.readLineWith("02 03 D0 00").empty()
            && !inverter.readLineWith("01 03 D0 00").empty()
            && !inverter.readLineWith("02 03 D0 00").empty();
    };
    ASSERT_TRUE(awaitRound());

    for (const char *value : { "101", "102", "103" }) {
        inverter.writeLine(std::string("hold D0 ") + value);
        ASSERT_TRUE(awaitRound());
    }
    const std::string said = pipe.readUntil("\"not_shown\"");

    EXPECT_NE(said.find("\"event\":\"held\""), std::string::npos);
    EXPECT_NE(said.find("\"value\":103}"), std::string::npos) << said;
    EXPECT_EQ(said.find("\"value\":101}"), std::string::npos);
    EXPECT_EQ(said.find("\"value\":102}"), std::string::npos);
}

TEST(StalledReader, ReaderIsWaitedForAtTheEndUntilASignalComes)
{
    Bench bench;
    bench.fake({ register17 });
    FullPipe pipe(bench.folder() + "/full");
    ChildProcess get(bench.shell("exec dx4 get SW >full 2>talk.txt"));
    ASSERT_TRUE(bench.awaitRequests(3, 1));
    ASSERT_TRUE(bench.awaitFreePort());

    get.signal(SIGINT);

    EXPECT_EQ(get.wait(), 130);
    EXPECT_EQ(contentOf(bench.folder() + "/talk.txt"),
              "dx4: standard output: its reader did not take the last 35 bytes\n");
}

TEST(StalledReader, OutputThatWaitsIsWholeOnceItIsRead)
{
    Bench bench;
    bench.fake({ register17 });
    FullPipe pipe(bench.folder() + "/full");
    ChildProcess get(bench.shell("exec dx4 get SW >full"));
    ASSERT_TRUE(bench.awaitRequests(3, 1));

    const std::string said = pipe.readUntil("\n");

    EXPECT_EQ(said, "1  SW 0 (0x2000)        17  0x0011\n");
    EXPECT_EQ(get.wait(), 0);
}
