// SPDX-License-Identifier: MIT
// A link of the user's own to the pseudo-terminal.
#include "master.h"
#include "served_line.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// A path where nothing stands.
std::string freePath(const std::string &name)
{
    const std::string path = ::testing::TempDir() + std::to_string(getpid()) + name;
    fs::remove_all(path);
    return path;
}

std::string targetOf(const std::string &path)
{
    std::error_code failed;
    return fs::read_symlink(path, failed).string();
}

/// What it says when it is to make this link, which it must not.
std::string refusalOf(const std::string &path)
{
    int code = -1;
    const std::string text = outputOf({ SIMULATOR_FILE, "--pty", "--link", path }, &code);
    EXPECT_EQ(code, 1);
    return text;
}

} // namespace

TEST(SimulatorLink, LeadsToTheDeviceUntilTheEnd)
{
    const std::string path = freePath("drive");
    for (const int signal : { SIGTERM, SIGINT, SIGHUP, 0 }) {
        ServedLine line({ "--link", path });

        EXPECT_EQ(targetOf(path), line.device);
        EXPECT_EQ(Master(path).read(0x2000), 1);
        if (signal == 0)
            line.process.writeLine("quit");
        else
            line.process.signal(signal);

        EXPECT_EQ(line.process.wait(), 0) << signal;
        EXPECT_FALSE(fs::is_symlink(path)) << signal;
    }
}

TEST(SimulatorLink, LeftOverOfAKilledRunIsReplaced)
{
    const std::string path = freePath("drive");
    {
        ServedLine killed({ "--link", path });
        killed.process.signal(SIGKILL);
        killed.process.wait();
    }
    EXPECT_TRUE(fs::is_symlink(path));
    // The kernel gives the number of the dead to whoever asks next, such as a test beside this one.
    fs::remove(path);
    fs::create_symlink("/dev/pts/999999", path);

    ServedLine line({ "--link", path });

    EXPECT_EQ(targetOf(path), line.device);
    EXPECT_EQ(line.quit(), 0);
}

TEST(SimulatorLink, NothingElseIsReplaced)
{
    const std::string file = freePath("drive-file");
    const std::string folder = freePath("drive-folder");
    const std::string link = freePath("drive-link");
    std::ofstream(file) << "mine";
    fs::create_directory(folder);
    fs::create_symlink("/nowhere/at/all", link);

    for (const std::string &path : { file, folder, link }) {
        EXPECT_EQ(refusalOf(path),
                  "dx4-sim: " + path
                      + ": is there already and no link to a pseudo-terminal; name another path\n");
    }

    EXPECT_EQ(contentOf(file), "mine");
    EXPECT_TRUE(fs::is_directory(folder));
    EXPECT_EQ(targetOf(link), "/nowhere/at/all");
}

TEST(SimulatorLink, OfARunningOneIsNotReplaced)
{
    const std::string path = freePath("drive");
    ServedLine first({ "--link", path });

    EXPECT_EQ(refusalOf(path),
              "dx4-sim: " + path + ": leads to " + first.device
                  + ", which is in use; remove it or name another path\n");

    EXPECT_EQ(targetOf(path), first.device);
}

TEST(SimulatorLink, WhatTookItsPlaceStays)
{
    const std::string path = freePath("drive");
    ServedLine line({ "--link", path });
    fs::remove(path);
    fs::create_symlink("/dev/null", path);

    EXPECT_EQ(line.quit(), 0);

    EXPECT_EQ(targetOf(path), "/dev/null");
}

TEST(SimulatorLink, FolderThatTakesNoneIsSaid)
{
    EXPECT_EQ(refusalOf("/no-such-folder/drive"),
              "dx4-sim: /no-such-folder/drive: No such file or directory\n");
}

TEST(SimulatorLink, IsForAPseudoTerminalOnly)
{
    int code = -1;

    const std::string text =
        outputOf({ SIMULATOR_FILE, "--port", "/dev/null", "--link", "x" }, &code);

    EXPECT_EQ(code, 2);
    EXPECT_EQ(text.substr(0, text.find('\n')),
              "dx4-sim: --link is for --pty only: a serial port has its path");
}

TEST(SimulatorLink, NameInJsonIsValidUtf8)
{
    const std::string path = freePath("drive\xFF\xC3\xA4");

    ServedLine line({ "--json", "--link", path });

    EXPECT_EQ(line.firstLine,
              R"({"event":"pty","path":")" + line.device + R"(","link":")" + ::testing::TempDir()
                  + std::to_string(getpid()) + "drive\xEF\xBF\xBD\xC3\xA4\"}");
    EXPECT_EQ(line.quit(), 0);
}
