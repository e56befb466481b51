// SPDX-License-Identifier: MIT
// Files as a whole: their size, their descriptors and what a person is told.
#include "simulator/text_file.h"

#include "test_files.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>

using namespace dx4::sim;

namespace {

constexpr off_t largest = 16777216; // bytes

/// A file of so many zeros, which take no room on the disk.
std::string fileOf(const std::string &name, off_t size)
{
    std::string path = fileWith(name, "");
    EXPECT_EQ(truncate(path.c_str(), size), 0);
    return path;
}

/// The number that the next descriptor gets.
int nextDescriptor()
{
    const int descriptor = dup(STDERR_FILENO);
    close(descriptor);
    return descriptor;
}

std::atomic<int> signalsSeen { 0 };

void countSignal(int)
{
    ++signalsSeen;
}

/// Writes "ab" into a pipe of that name, and disturbs the reader many times in between.
void writeWithSignals(const std::string &path, pthread_t reader)
{
    const int pipe = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(write(pipe, "a", 1), 1);
    for (int i = 1; i <= 200; ++i) {
        pthread_kill(reader, SIGUSR1);
        while (signalsSeen < i)
            std::this_thread::yield();
    }
    EXPECT_EQ(write(pipe, "b", 1), 1);
    close(pipe);
}

} // namespace

TEST(TextFiles, AreReadAsAWhole)
{
    const std::string content = std::string(5000, 'x') + "\nlast";
    const std::string path = fileWith("whole.txt", content);
    std::string error;
    errno = EIO; // of an earlier call

    const std::optional<std::string> text = readTextFile(path, &error);

    EXPECT_EQ(text, content);
    EXPECT_EQ(error, "");
}

TEST(TextFiles, MayHoldSixteenMebibytes)
{
    const std::string path = fileOf("largest.txt", largest);
    std::string error;

    const std::optional<std::string> text = readTextFile(path, &error);
    unlink(path.c_str());

    ASSERT_TRUE(text);
    EXPECT_EQ(text->size(), 16777216U);
    EXPECT_EQ(error, "");
}

TEST(TextFiles, AreRefusedWhereTheyAreLarger)
{
    const std::string path = fileOf("too-large.txt", largest + 1);
    std::string error;

    const std::optional<std::string> text = readTextFile(path, &error);
    unlink(path.c_str());

    EXPECT_EQ(text, std::nullopt);
    EXPECT_EQ(error, path + ": File too large");
}

TEST(TextFiles, CannotBeFolders)
{
    std::string error;

    const std::optional<std::string> text = readTextFile("/", &error);

    EXPECT_EQ(text, std::nullopt);
    EXPECT_EQ(error, "/: Is a directory");
}

TEST(TextFiles, AreClosedBehindTheReading)
{
    const std::string path = fileWith("closed.txt", "text");
    std::string error;
    const int before = nextDescriptor();

    readTextFile(path, &error);

    EXPECT_EQ(nextDescriptor(), before);
}

TEST(TextFiles, AreReadAlsoInPlaceOfAClosedStandardInput)
{
    const std::string path = fileWith("input.txt", "text");
    const auto readWithoutInput = [&path] {
        close(STDIN_FILENO);
        std::string error;
        const bool isRead = readTextFile(path, &error) == "text";
        _exit(isRead && nextDescriptor() == STDIN_FILENO ? 0 : 1);
    };

    EXPECT_EXIT(readWithoutInput(), ::testing::ExitedWithCode(0), "");
}

TEST(TextFiles, ThatAreTerminalsDoNotTakeHoldOfTheSession)
{
    const auto readTerminal = [] {
        setsid();
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        grantpt(master);
        unlockpt(master);
        const bool isWritten = write(master, "text\n\4", 6) == 6; // ends as a person ends it
        std::string error;
        const bool isRead = readTextFile(ptsname(master), &error) == "text\n";
        _exit(isWritten && isRead && open("/dev/tty", O_RDWR) < 0 ? 0 : 1);
    };

    EXPECT_EXIT(readTerminal(), ::testing::ExitedWithCode(0), "");
}

TEST(TextFiles, AreReadOnBehindASignal)
{
    struct sigaction action = {};
    action.sa_handler = countSignal; // without SA_RESTART: a waiting read ends
    struct sigaction usual = {};
    sigaction(SIGUSR1, &action, &usual);
    const std::string path = ::testing::TempDir() + std::to_string(getpid()) + "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), S_IRUSR | S_IWUSR), 0);
    std::signal(SIGPIPE, SIG_IGN); // a reader that gives up is told below
    std::string error;

    std::thread writer(writeWithSignals, path, pthread_self());
    const std::optional<std::string> text = readTextFile(path, &error);
    writer.join();

    EXPECT_EQ(text, "ab") << error;
    sigaction(SIGUSR1, &usual, nullptr);
    unlink(path.c_str());
}
