// SPDX-License-Identifier: MIT
// How the tool ends when somebody ends it.
#include "bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace {

/// Starts a command that prints, and interrupts it behind its first line.
int codeAfterInterrupt(Bench &bench, const std::string &command)
{
    ChildProcess child(bench.shell("exec " + command));
    EXPECT_NE(child.readLine(), "");
    child.signal(SIGINT);
    child.readAll();
    return child.wait();
}

/// A configuration of station 1 with a stop.
void writePlant(Bench &bench)
{
    bench.run("printf '[line]\\nport = \"%s\"\\n[stop]\\ncontrol_word = 0\\n[[station]]\\n"
              "address = 1\\n[[station.register]]\\nat = \"D 4\"\\n' \"$DX4_PORT\" >plant.toml");
}

/// What a silent command on a line says when it is interrupted.
std::string talkAfterInterrupt(Bench &bench, const std::string &command, int expectedCode)
{
    ChildProcess child(bench.shell("exec " + command + " 2>talk.txt"));
    while (bench.run("dx4 line $DX4_PORT").out.find("by dx4 ") == std::string::npos
           && bench.run("dx4 line $DX4_PORT").out.find(", dx4 ") == std::string::npos)
        ;
    child.signal(SIGINT);
    child.readAll();
    EXPECT_EQ(child.wait(), expectedCode);
    return contentOf(bench.folder() + "/talk.txt");
}

} // namespace

TEST(Ending, InterruptIsTheUsualEndOfAWatch)
{
    Bench bench;
    bench.serve("1");

    EXPECT_EQ(codeAfterInterrupt(bench, "dx4 watch D 0-13"), 0);
}

TEST(Ending, InterruptedBeforeItsOwnEndIsNotDone)
{
    Bench bench;
    bench.serve("1");

    EXPECT_EQ(codeAfterInterrupt(bench, "dx4 watch --rounds 1000000 D 0"), 130);
    EXPECT_EQ(talkAfterInterrupt(bench, "dx4 record --rounds 1000000 line.pcap D 0", 130),
              "dx4 record: interrupted\n");
    EXPECT_EQ(talkAfterInterrupt(bench, "dx4 stats --requests 1000000", 130),
              "dx4 stats: interrupted\n");
    EXPECT_EQ(
        codeAfterInterrupt(bench, "dx4 demo --seconds 3600 --sim '" SIMULATOR_FILE "' 2>demo.txt"),
        130);
    EXPECT_EQ(contentOf(bench.folder() + "/demo.txt"), "dx4 demo: interrupted\n");
}

TEST(Ending, InterruptedWatchSendsTheConfiguredStop)
{
    Bench bench;
    bench.serve("1");
    writePlant(bench);
    bench.run("dx4 run --frequency 30");

    const int code = codeAfterInterrupt(bench, "dx4 watch --config plant.toml 2>talk.txt");

    EXPECT_EQ(code, 0);
    EXPECT_EQ(contentOf(bench.folder() + "/talk.txt"), "dx4 watch: station 1 stopped\n");
}

TEST(Ending, InterruptedRecordAndStatsSendTheConfiguredStop)
{
    Bench bench;
    bench.serve("1");
    writePlant(bench);

    EXPECT_EQ(talkAfterInterrupt(bench, "dx4 record --config plant.toml line.pcap", 0),
              "dx4 record: station 1 stopped\n");
    EXPECT_EQ(talkAfterInterrupt(bench, "dx4 stats --requests 1000000 --config plant.toml", 130),
              "dx4 stats: station 1 stopped\ndx4 stats: interrupted\n");
}

TEST(Ending, UnconfirmedStopIsAFailure)
{
    Bench bench;
    bench.serve("1");
    writePlant(bench);
    bench.run("sed -i 's/^control_word/confirm_ms = 200\\n&/' plant.toml");
    bench.tell("fault kind = \"drop-request\"");

    const std::string talk =
        talkAfterInterrupt(bench, "dx4 record --config plant.toml --timeout 30 line.pcap", 1);

    EXPECT_EQ(talk,
              "dx4 record: STOP NOT CONFIRMED by station 1: it may still run\n"
              "dx4 record: the motor of station 1 may still turn; stop it with: "
              "dx4 stop --config plant.toml --port "
                  + bench.device() + " --station 1\n");
}

TEST(Ending, InterruptDoesNotWaitForALongTimeout)
{
    Bench bench;
    bench.serve("1");

    EXPECT_EQ(codeAfterInterrupt(bench, "dx4 get --timeout 60000 --retries 100 SW 9:SW"), 130);
}

TEST(Ending, InterruptedDumpKeepsWhatItHas)
{
    Bench bench;
    bench.serve("1");
    bench.tell("fault kind = \"drop-request\", registers = \"F8.0\"");

    const std::string talk =
        talkAfterInterrupt(bench, "dx4 params dump --timeout 60000 drive.txt", 130);

    EXPECT_NE(talk.find("dx4 params dump: "), std::string::npos);
    bench.tell("faults-off");
    EXPECT_EQ(bench.run("dx4 params dump drive.txt").code, 0);
    EXPECT_EQ(bench.run("tail -n 1 drive.txt").out, "complete\n");
}

TEST(Ending, InterruptedRestoreTellsWhatItHasNotLookedAt)
{
    Bench bench;
    bench.serve("1");
    bench.run("dx4 params dump drive.txt");
    bench.tell("fault kind = \"drop-request\", registers = \"F0.0\"");

    const std::string talk =
        talkAfterInterrupt(bench, "dx4 params restore --timeout 60000 drive.txt >report.txt", 130);

    EXPECT_NE(talk.find("dx4 params restore: "), std::string::npos);
    EXPECT_EQ(contentOf(bench.folder() + "/report.txt"),
              "station 1 to station 1: 0 compared, 0 written, 0 verified\n"
              "0 refused, 0 still different, 203 not looked at\n");
}

TEST(Ending, InterruptedScanSaysHowToGoOn)
{
    Bench bench;
    bench.serve("1");

    const int code =
        codeAfterInterrupt(bench, "dx4 scan --timeout 20 --resume state.json 2>talk.txt");

    EXPECT_EQ(code, 130);
    EXPECT_NE(contentOf(bench.folder() + "/talk.txt").find("go on with --resume state.json"),
              std::string::npos);
    EXPECT_NE(contentOf(bench.folder() + "/state.json").find("\"found\":[1]"), std::string::npos);
}

TEST(Ending, RecordingIsWholeWhenTheCommandEnds)
{
    Bench bench;
    bench.serve("1");

    const Printed printed =
        bench.run("dx4 record line.pcap SW --rounds 3 && dx4 replay line.pcap 2>/dev/null");

    EXPECT_EQ(printed.code, 0);
    EXPECT_EQ(printed.out, "6 frames in line.pcap\n1  SW 0 (0x2000)         1  0x0001\n");
}

TEST(Ending, WatchEndsWithTheReaderOfItsPipe)
{
    Bench bench;
    bench.serve("1");

    const Printed printed = bench.run("{ dx4 watch --csv D 0; echo \"code $?\" >&2; } | head -n 1");

    EXPECT_EQ(printed.out,
              "time,station,type,address,register,value,state,name,scaled,unit,meaning\n");
    EXPECT_EQ(printed.err, "code 0\n");
}

TEST(Ending, ReadersWhoHaveHadEnoughAreNoInterrupt)
{
    Bench bench;
    bench.serve("1");

    for (const char *command : { "get --timeout 60000 SW 9:SW", "scan --timeout 60000",
                                 "watch --rounds 1000000 D 0-13" }) {
        const Printed printed = bench.run(std::string("{ dx4 ") + command
                                          + " 2>/dev/null; echo \"code $?\" >&2; } | head -n 1");

        EXPECT_EQ(std::count(printed.out.begin(), printed.out.end(), '\n'), 1) << command;
        EXPECT_EQ(printed.err, "code 0\n") << command;
    }
}

TEST(Ending, KilledRecordingKeepsWhatItHeard)
{
    Bench bench;
    bench.serve("1");
    ChildProcess record(bench.shell("exec dx4 record line.pcap SW"));
    // The file's head has 24 bytes.
    while (bench.run("stat -c %s line.pcap").out.size() < 4)
        ;

    record.signal(SIGKILL);
    record.wait();

    EXPECT_EQ(bench.run("dx4 replay line.pcap").out, "1  SW 0 (0x2000)         1  0x0001\n");
}

TEST(Ending, DemoWithoutAReaderStillStopsTheMotor)
{
    Bench bench;

    const Printed printed = bench.run("{ dx4 demo --seconds 3600 --sim '" SIMULATOR_FILE
                                      "'; echo \"code $?\" >&2; } | head -n 1");

    EXPECT_EQ(printed.out.rfind("driver ", 0), 0U);
    EXPECT_EQ(printed.err, "code 0\n");
}
