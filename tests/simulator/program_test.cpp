// SPDX-License-Identifier: MIT
// dx4-sim as its users meet it: command line, device, commands, exit codes.
#include "master.h"
#include "served_line.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace {

std::string outputOfSim(std::vector<std::string> arguments, int *code)
{
    arguments.insert(arguments.begin(), SIMULATOR_FILE);
    return outputOf(arguments, code);
}

} // namespace

TEST(SimulatorProgram, FirstLineNamesTheDevice)
{
    ServedLine line;

    EXPECT_EQ(line.firstLine.substr(0, 9), "pty /dev/");
    EXPECT_EQ(access(line.device.c_str(), R_OK | W_OK), 0);
    EXPECT_EQ(line.quit(), 0);
}

TEST(SimulatorProgram, EndsOnTerminateWithZero)
{
    ServedLine line;

    line.process.signal(SIGTERM);

    EXPECT_EQ(line.process.wait(), 0);
}

TEST(SimulatorProgram, EndsOnInterruptWithZero)
{
    ServedLine line;

    line.process.signal(SIGINT);

    EXPECT_EQ(line.process.wait(), 0);
}

TEST(SimulatorProgram, ServesOnWithoutStandardInput)
{
    ServedLine line;
    line.process.closeInput();
    Master master(line.device);

    EXPECT_EQ(master.read(0x2000), 1);
}

TEST(SimulatorProgram, AnswersAMasterThatIsNotOurs)
{
    ServedLine line({ "--stations", "1,5" });
    Master master(line.device, 5);
    ASSERT_TRUE(master.connected);

    const bool wroteOne = master.write(0xF203, 1234);
    const bool wroteTwo = master.writeTwo(0xFC00, { 7, 8 });
    const bool commanded = master.write(0x1001, 0);
    const bool setFrequency = master.write(0x1002, 2500);

    EXPECT_TRUE(wroteOne);
    EXPECT_TRUE(wroteTwo);
    EXPECT_TRUE(commanded);
    EXPECT_TRUE(setFrequency);
    EXPECT_EQ(master.read(0xF203), 1234);
    EXPECT_EQ(master.read(0xFC01), 8);
    EXPECT_EQ(master.read(0xD001), 2500);
    EXPECT_EQ(master.read(0x2000), 1);
    EXPECT_EQ(master.read(0x2001), 0);
}

TEST(SimulatorProgram, TheDeviceOutlivesItsMasters)
{
    ServedLine line;

    for (int i = 0; i < 3; ++i) {
        Master master(line.device);
        EXPECT_EQ(master.read(0x2001), 0);
    }
}

TEST(SimulatorProgram, RefusesWithTheRightException)
{
    ServedLine line;
    Master master(line.device);

    const int missing = master.read(0x0000);

    EXPECT_EQ(missing, -1);
    EXPECT_EQ(master.error, EMBXILADD);
}

TEST(SimulatorProgram, CommandsReachTheDrive)
{
    ServedLine line;
    Master master(line.device);

    EXPECT_EQ(line.command("set F0.3 17"), "ok");
    EXPECT_EQ(line.command("get F0.3"), "F0.3 17");
    EXPECT_EQ(line.command("trip overheat"), "ok");
    EXPECT_EQ(line.command("hold D7 4660"), "ok");
    EXPECT_EQ(master.read(0xF003), 17);
    EXPECT_EQ(master.read(0x2001), 4);
    EXPECT_EQ(master.read(0xD007), 0x1234);
    EXPECT_EQ(line.command("status"),
              "station 1: fault, 0.00 Hz, 0.0 A, 0 V, link 566 V, 25.0 C, fault overheat");
}

TEST(SimulatorProgram, UnpluggedLineIsSilentUntilPlugged)
{
    ServedLine line;
    Master master(line.device);
    master.setTimeoutMs(50);
    line.command("unplug");

    const int out = master.read(0x2001);
    const int error = master.error;
    line.command("plug");
    master.setTimeoutMs(900);

    EXPECT_EQ(out, -1);
    EXPECT_EQ(error, ETIMEDOUT);
    EXPECT_EQ(master.read(0x2001), 0);
}

TEST(SimulatorProgram, JsonLinesTellWhatPassed)
{
    ServedLine line({ "--json", "--speed", "0" });
    Master master(line.device);

    master.read(0x2001);
    const std::string request = line.process.readLine();
    const std::string reply = line.process.readLine();
    const std::string answer = line.command("get F0.0");

    EXPECT_EQ(line.firstLine, R"({"event":"pty","path":")" + line.device + "\"}");
    EXPECT_EQ(request.substr(0, 36), R"({"event":"request","frame":1,"time":)");
    EXPECT_NE(request.find(R"("bytes":"01 03 20 01 00 01 DE 0A")"), std::string::npos);
    EXPECT_NE(reply.find(R"("bytes":"01 03 02 00 00 B8 44")"), std::string::npos);
    EXPECT_EQ(answer, R"({"event":"answer","ok":true,"text":"F0.0 0"})");
}

TEST(SimulatorProgram, SameSeedGivesTheSameLogTwice)
{
    const std::string faults = fileWith("faults.toml",
                                        "[[fault]]\nkind = \"flip-bits\"\nprobability = 0.3\n"
                                        "[[fault]]\nkind = \"junk\"\nprobability = 0.2\n"
                                        "place = \"after\"\n");
    std::vector<std::string> logs;

    for (int i = 0; i < 2; ++i) {
        const std::string log = ::testing::TempDir() + "bytes" + std::to_string(i) + ".log";
        ServedLine line({ "--faults", faults, "--seed", "7", "--log", log, "--speed", "0" });
        for (int n = 1; n <= 20; ++n) {
            Master(line.device).read(0xF800);
            // What is left of a spoiled reply may answer the next request at once, and the master
            // would run ahead until two requests come as one.
            ASSERT_TRUE(comesToHold(log, "\n" + std::to_string(n) + " < "));
        }
        EXPECT_EQ(line.quit(), 0);
        logs.push_back(contentOf(log));
    }

    EXPECT_NE(logs[0].find("! flip-bits reply"), std::string::npos);
    EXPECT_EQ(logs[0], logs[1]);
}

TEST(SimulatorProgram, ServesASerialDevice)
{
    const int ours = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_EQ(grantpt(ours), 0);
    ASSERT_EQ(unlockpt(ours), 0);
    const std::string device = ptsname(ours);
    ChildProcess process({ SIMULATOR_FILE, "--port", device, "--format", "8E1" });

    const std::string first = process.readLine();
    const unsigned char request[] = { 0x01, 0x03, 0x20, 0x01, 0x00, 0x01, 0xDE, 0x0A };
    ASSERT_EQ(write(ours, request, sizeof request), 8);
    std::string reply;
    for (char byte; reply.size() < 7 && read(ours, &byte, 1) == 1;)
        reply += byte;
    process.signal(SIGTERM);

    EXPECT_EQ(first, "port " + device);
    EXPECT_EQ(reply, std::string("\x01\x03\x02\x00\x00\xB8\x44", 7));
    EXPECT_EQ(process.wait(), 0);
    close(ours);
}

TEST(SimulatorProgram, LogThatIsLostIsSaidAtOnceAndByTheExitCode)
{
    ChildProcess process({ SIMULATOR_FILE, "--pty", "--speed", "0", "--log", "/dev/full" }, true);
    const std::string first = process.readLine();
    Master master(first.substr(first.find('/')));

    const int before = master.read(0x2001);
    const std::string said = process.readLine();
    const int after = master.read(0x2001);
    process.writeLine("quit");

    EXPECT_EQ(before, 0);
    EXPECT_EQ(said, "dx4-sim: /dev/full: No space left on device; nothing more is written there");
    EXPECT_EQ(after, 0);
    EXPECT_EQ(process.readAll(), "");
    EXPECT_EQ(process.wait(), 1);
}

TEST(SimulatorProgram, ReaderWhoHasHadEnoughTakesNoDriveOffTheLine)
{
    ServedLine line({ "--json", "--speed", "0" });
    Master master(line.device);
    line.process.closeOutput();

    EXPECT_EQ(master.read(0x2001), 0);
    EXPECT_EQ(master.read(0x2001), 0);
    EXPECT_EQ(line.quit(), 0);
}

TEST(SimulatorProgram, CaptureThatCannotBeBegunEndsIt)
{
    int code = -1;

    const std::string text = outputOfSim({ "--pty", "--pcap", "/dev/full" }, &code);

    EXPECT_EQ(code, 1);
    EXPECT_EQ(text, "dx4-sim: /dev/full: No space left on device; nothing more is written there\n");
}

TEST(SimulatorProgram, DeviceThatNobodyIsToldOfIsNotServed)
{
    for (const auto &[redirection, cause] : { std::pair(" >/dev/full", "No space left on device"),
                                              std::pair(" >&-", "Bad file descriptor") }) {
        int code = -1;

        const std::string text = outputOf(
            { "/bin/sh", "-c", std::string("exec " SIMULATOR_FILE " --pty 2>&1") + redirection },
            &code);

        EXPECT_EQ(code, 1) << redirection;
        EXPECT_EQ(text,
                  std::string("dx4-sim: standard output: ") + cause
                      + "; nothing more is written there\n");
    }
}

TEST(SimulatorProgram, JsonIsUtf8WhateverComesIn)
{
    ServedLine line({ "--json", "--speed", "0" });
    const int device = open(line.device.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(write(device, "\xFF\x00\x80", 3), 3);

    const std::string request = line.process.readLine();
    const std::string nothing = line.process.readLine();
    const std::string answer = line.command("\xFE\x80\"\\ 1");

    EXPECT_NE(request.find(R"("bytes":"FF 00 80")"), std::string::npos) << request;
    EXPECT_EQ(nothing.substr(0, 31), R"({"event":"no-reply","frame":1,")");
    EXPECT_EQ(answer,
              "{\"event\":\"answer\",\"ok\":false,\"text\":\"\xEF\xBF\xBD\xEF\xBF\xBD\\\"\\\\: "
              "no such command; help lists them\"}");
    close(device);
}

TEST(SimulatorProgram, CommandWithoutEndIsNotKept)
{
    ChildProcess process({ SIMULATOR_FILE, "--pty" }, true);
    process.readLine();

    process.writeLine(std::string(20000, 'x') + " quit");
    const std::string said = process.readLine();
    process.writeLine("get F8.0");

    EXPECT_EQ(said, "dx4-sim: a command of more than 4096 bytes was not run");
    EXPECT_EQ(process.readLine(), "F8.0 5000");
}

TEST(SimulatorProgram, PortThatAnotherProgramHoldsIsRefused)
{
    ServedLine other;
    const int held = open(other.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    int code = -1;

    const std::string text = outputOfSim({ "--port", other.device }, &code);

    EXPECT_EQ(code, 1);
    EXPECT_EQ(text.find("dx4-sim: " + other.device + ": in use by "), 0U) << text;
    EXPECT_NE(text.find("simulator_program_test (process " + std::to_string(getpid()) + ")"),
              std::string::npos)
        << text;
    close(held);
}

TEST(SimulatorProgram, PortThatAnotherProgramHasOpenWithoutALockIsRefused)
{
    ServedLine other;
    const int opened = open(other.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    int code = -1;

    const std::string text = outputOfSim({ "--port", other.device }, &code);

    EXPECT_EQ(code, 1);
    EXPECT_EQ(text,
              "dx4-sim: " + other.device + ": in use by simulator_program_test (process "
                  + std::to_string(getpid())
                  + "), which took no lock; end it, as two programs on one line disturb each "
                    "other\n");
    close(opened);
}

TEST(SimulatorProgram, PortIsHeldWhileItIsServed)
{
    ServedLine line; // its other end is a serial device to the next one
    ChildProcess holder({ SIMULATOR_FILE, "--port", line.device });
    ASSERT_EQ(holder.readLine(), "port " + line.device);

    const int device = open(line.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);

    EXPECT_NE(flock(device, LOCK_EX | LOCK_NB), 0);
    close(device);
}

TEST(SimulatorProgram, FolderThatTakesNoFileIsSaid)
{
    for (const std::string option : { "--log", "--pcap" }) {
        int code = -1;

        const std::string text = outputOfSim({ "--pty", option, "/sys/dx4-sim.file" }, &code);

        EXPECT_EQ(code, 1);
        EXPECT_EQ(text.find("dx4-sim: /sys/dx4-sim.file: "), 0U) << text;
        EXPECT_EQ(text.find("pty "), std::string::npos);
    }
}

TEST(SimulatorProgram, StartsWithTheValuesOfAFile)
{
    const std::string values = fileWith("values.txt", "station 2\nF 8.2 = 70\nD 4 = 101\n");
    ServedLine line({ "--stations", "1-2", "--values", values });

    EXPECT_EQ(Master(line.device, 2).read(0xF802), 70);
    EXPECT_EQ(Master(line.device, 2).read(0xD004), 101);
    EXPECT_EQ(Master(line.device, 1).read(0xF802), 50);
}

TEST(SimulatorUsage, BrokenValueFileIsAUsageErrorWithItsLine)
{
    const std::string path = fileWith("broken.txt", "station 1\nF 8.4 = 481\n");
    int code = -1;

    const std::string text = outputOfSim({ "--pty", "--values", path }, &code);

    EXPECT_EQ(code, 2);
    EXPECT_EQ(text, "dx4-sim: " + path + ":2: 481 is outside the limits of F8.4, 100 to 480\n");
}

TEST(SimulatorUsage, HelpOnAFullDiskIsAFailure)
{
    int code = -1;

    outputOf({ "/bin/sh", "-c", "exec " SIMULATOR_FILE " --help 2>&1 >/dev/full" }, &code);

    EXPECT_EQ(code, 1);
}

TEST(SimulatorUsage, HelpShowsExamplesAndExitCodes)
{
    int code = -1;

    const std::string help = outputOfSim({ "--help" }, &code);

    EXPECT_EQ(code, 0);
    EXPECT_NE(help.find("dx4-sim --pty --stations 1,2,5 --json"), std::string::npos);
    EXPECT_NE(help.find("Exit codes: 0 done, 1 device or line, 2 usage."), std::string::npos);
}

TEST(SimulatorUsage, NothingToServeIsAUsageError)
{
    int code = -1;

    const std::string text = outputOfSim({}, &code);

    EXPECT_EQ(code, 2);
    EXPECT_EQ(text.substr(0, text.find('\n')),
              "dx4-sim: say what to serve: --pty or --port DEVICE");
}

TEST(SimulatorUsage, NumbersAreReadToTheLetter)
{
    const std::string stations = "; stations are 1 to 247, such as 1,3-5";
    const std::string seed = " is no seed; it is a whole number from 0 to 18446744073709551615";
    const std::vector<std::array<std::string, 3>> rows = { {
        { "--seed", "", "\"\"" + seed },
        { "--seed", "-1", "\"-1\"" + seed },
        { "--seed", "1e3", "\"1e3\"" + seed },
        { "--seed", "9999999999999999999999", "\"9999999999999999999999\"" + seed },
        { "--stations", "", "\"\" is no station" + stations },
        { "--stations", "1,", "\"\" is no station" + stations },
        { "--stations", "0", "\"0\" is out of range" + stations },
        { "--stations", "300", "\"300\" is out of range" + stations },
        { "--stations", "1,2,1", "1 stands there twice" },
        { "--speed", "1e3", "\"1e3\" is no whole number; 0 to 1000000 is allowed" },
        { "--speed", "-1", "\"-1\" is out of range; 0 to 1000000 is allowed" },
        { "--speed", "010x", "\"010x\" is no whole number; 0 to 1000000 is allowed" },
        { "--turnaround", "10001", "\"10001\" is out of range; 0 to 10000 is allowed" },
        { "--turnaround", "", "\"\" is no whole number; 0 to 10000 is allowed" },
    } };
    for (const auto &[option, value, why] : rows) {
        int code = -1;

        const std::string text = outputOfSim({ "--pty", option, value }, &code);

        EXPECT_EQ(code, 2) << option << ' ' << value;
        EXPECT_EQ(text.substr(0, text.find('\n')), "dx4-sim: " + option + ": " + why);
    }
}

TEST(SimulatorUsage, LargestSeedIsTaken)
{
    ServedLine line({ "--seed", "18446744073709551615" });

    EXPECT_EQ(line.quit(), 0);
}

TEST(SimulatorProgram, ServesARunOfStations)
{
    ServedLine line({ "--stations", "2-4,30", "--stations", "32" });

    for (const int station : { 2, 3, 4, 30, 32 })
        EXPECT_EQ(Master(line.device, station).read(0x2000), 1) << station;
    EXPECT_EQ(line.command("@5 status"), "error: no such station; try @1 status");
}

TEST(SimulatorUsage, EmptyValueDoesNotTakeTheNextWord)
{
    int code = -1;

    const std::string text = outputOfSim({ "--log=", "--pty" }, &code);

    EXPECT_EQ(code, 2);
    EXPECT_EQ(text.substr(0, text.find('\n')), "dx4-sim: --log: nothing given behind \"=\"");
}

TEST(SimulatorUsage, FileThatIsReadIsNotWritten)
{
    const std::string path = fileWith("mine.toml", "seed = 7\n");
    const std::string same = ::testing::TempDir() + "./" + path.substr(path.rfind('/') + 1);
    const std::vector<std::pair<std::vector<std::string>, std::string>> rows = {
        { { "--faults", path, "--log", same }, "--log is the file of --faults" },
        { { "--values", path, "--pcap", same }, "--pcap is the file of --values" },
        { { "--log", "new.log", "--pcap", "new.log" }, "--log and --pcap are one file" },
    };
    for (const auto &[arguments, why] : rows) {
        std::vector<std::string> all = arguments;
        all.insert(all.begin(), "--pty");
        int code = -1;

        const std::string text = outputOfSim(all, &code);

        EXPECT_EQ(code, 2);
        EXPECT_EQ(text.substr(0, text.find('\n')), "dx4-sim: " + why + "; name another file");
    }

    EXPECT_EQ(contentOf(path), "seed = 7\n");
}

TEST(SimulatorUsage, EmptyWordIsNoFile)
{
    int code = -1;

    const std::string text = outputOfSim({ "--pty", "--pcap", "" }, &code);

    EXPECT_EQ(code, 2);
    EXPECT_EQ(text.substr(0, text.find('\n')), "dx4-sim: --pcap: nothing given");
}

TEST(SimulatorUsage, BrokenFaultFileIsAUsageErrorWithItsLine)
{
    const std::string path = fileWith("broken.toml", "[[fault]]\nkind = \"echo\"\nframe = 0\n");
    int code = -1;

    const std::string text = outputOfSim({ "--pty", "--faults", path }, &code);

    EXPECT_EQ(code, 2);
    EXPECT_EQ(text,
              "dx4-sim: " + path + ":3: frame: expected a whole number from 1 to 1000000000\n");
}

TEST(SimulatorUsage, MissingDeviceIsADeviceError)
{
    int code = -1;

    const std::string text = outputOfSim({ "--port", "/dev/no-such-port" }, &code);

    EXPECT_EQ(code, 1);
    EXPECT_EQ(text, "dx4-sim: /dev/no-such-port: No such file or directory\n");
}

TEST(SimulatorUsage, UnusualSpeedOfAPortIsAUsageError)
{
    int code = -1;

    outputOfSim({ "--port", "/dev/null", "--speed", "12345" }, &code);

    EXPECT_EQ(code, 2);
}
