// SPDX-License-Identifier: MIT
// What a user sees of the frames on the line.
#include "bench.h"

#include <gtest/gtest.h>

#include <csignal>
#include <regex>

namespace {

/// Times of day and turnarounds differ from run to run.
std::string masked(const std::string &text)
{
    const std::string timeless =
        std::regex_replace(text, std::regex("(^|\n)[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} "), "$1");
    return std::regex_replace(timeless, std::regex("turnaround [0-9.]+ ms"), "turnaround T");
}

} // namespace

TEST(Trace, ShowsRequestAndReplyInBytesAndInWords)
{
    Bench bench;
    bench.serve("1");
    bench.tell("hold D4 566");

    const Printed printed = bench.run("dx4 get --trace D 4-5");

    EXPECT_EQ(printed.code, 0);
    EXPECT_EQ(masked(printed.err),
              "> 01 03 D0 04 00 02 BD 0A  station 1, read request, D 4 (0xD004), 2 registers\n"
              "< 01 03 04 02 36 00 FA 9B C6  station 1, read reply, D 4 (0xD004) = 566, 250, "
              "turnaround T\n");
    EXPECT_TRUE(std::regex_search(printed.err,
                                  std::regex("^[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} > 01 03")))
        << printed.err;
}

TEST(Trace, TellsARequestFromItsEcho)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("dx4 set -v FRE 3000");

    const std::string trace = masked(printed.err);
    const std::string exchange =
        "> 01 06 10 02 0B B8 2B 88  station 1, write request, FRE 0 (0x1002) = 3000\n"
        "< 01 06 10 02 0B B8 2B 88  station 1, echo of a write, FRE 0 (0x1002) = 3000, "
        "turnaround T\n";
    EXPECT_NE(trace.find(exchange), std::string::npos) << trace;
}

TEST(Trace, NamesRefusalsDamageAndSilence)
{
    Bench bench;
    bench.fake({ "01 83 02 CRC" });
    const Printed refused = bench.run("dx4 get -v SW");
    EXPECT_NE(masked(refused.err)
                  .find("< 01 83 02 C0 F1  station 1, exception, 2, register not there, "
                        "turnaround T\n"),
              std::string::npos)
        << refused.err;

    Bench damaged;
    damaged.fake({ "01 03 02 00 11 00 00" });
    const Printed broken = damaged.run("dx4 get -v --retries 0 --timeout 50 SW");
    EXPECT_NE(masked(broken.err).find("station 1, read reply, SW 0 (0x2000) = 17, wrong CRC"),
              std::string::npos)
        << broken.err;

    Bench silent;
    silent.serve("1");
    const Printed nothing = silent.run("dx4 get -v --retries 0 --timeout 20 2:SW");
    EXPECT_NE(masked(nothing.err).find("< nothing\n"), std::string::npos) << nothing.err;
}

TEST(Trace, ReaderThatDoesNotReadHoldsUpNothing)
{
    Bench bench;
    bench.serve("1");
    bench.run("mkfifo talk");
    ChildProcess watch(bench.shell("exec 3<>talk; exec dx4 watch -v --sample 10 D 0-9 2>talk"));

    // Far more frames pass than a pipe and the stream in front of it take.
    for (int row = 0; row < 150; ++row)
        ASSERT_NE(watch.readLine(), "");

    watch.signal(SIGINT);
    watch.readAll();
    EXPECT_EQ(watch.wait(), 0);
}
