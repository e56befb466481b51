// SPDX-License-Identifier: MIT
// The serial line: exclusive use, lasting names, and an adapter that goes away.
#include "host/port_list.h"
#include "host/serial_line.h"

#include "pseudo_terminal.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

using namespace dx4::host;
using std::chrono::seconds;

namespace {

LineSettings on(const QString &port)
{
    LineSettings settings;
    settings.port = port;
    return settings;
}

/// Qt's serial port complains on a thread that has no application or event loop.
class SerialLineTest : public ::testing::Test {
protected:
    int count = 1;
    char program[5] = "test";
    char *arguments[2] = { program, nullptr };
    QCoreApplication application { count, arguments };
};

} // namespace

TEST_F(SerialLineTest, APortInUseIsRefusedWithItsHolder)
{
    const PseudoTerminal adapter;
    SerialLine first(on(adapter.path()));
    SerialLine second(on(adapter.path()));
    QString error;
    ASSERT_TRUE(first.open(&error)) << error.toStdString();

    const bool opened = second.open(&error);

    EXPECT_FALSE(opened);
    EXPECT_FALSE(second.isOpen());
    EXPECT_TRUE(first.isOpen());
    EXPECT_EQ(error.toStdString(),
              adapter.path().toStdString() + ": in use by korvane_host_test (process "
                  + std::to_string(getpid()) + ")");
}

TEST_F(SerialLineTest, AHolderThatOnlyLocksIsTheOnlyOneNamed)
{
    const PseudoTerminal adapter;
    int ready[2] = {};
    ASSERT_EQ(pipe(ready), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        const int port = ::open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY);
        const bool locked = port >= 0 && flock(port, LOCK_EX | LOCK_NB) == 0;
        const bool told = write(ready[1], locked ? "y" : "n", 1) == 1;
        alarm(60);
        pause();
        _exit(told ? 0 : 1);
    }
    char answer = 0;
    EXPECT_EQ(read(ready[0], &answer, 1), 1);
    SerialLine line(on(adapter.path()));
    QString error;

    const bool opened = line.open(&error);

    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
    EXPECT_EQ(answer, 'y');
    EXPECT_FALSE(opened);
    EXPECT_EQ(error.toStdString(),
              adapter.path().toStdString() + ": in use by korvane_host_test (process "
                  + std::to_string(holder) + ")");
}

TEST_F(SerialLineTest, AClosedPortIsFreeForTheNext)
{
    const PseudoTerminal adapter;
    SerialLine first(on(adapter.path()));
    SerialLine second(on(adapter.path()));
    first.open(nullptr);
    first.close();

    QString error;
    const bool opened = second.open(&error);

    EXPECT_TRUE(opened) << error.toStdString();
}

TEST_F(SerialLineTest, APortThatDoesNotExistIsNamed)
{
    SerialLine line(on(QStringLiteral("/dev/none")));
    QString error;

    const bool opened = line.open(&error);

    EXPECT_FALSE(opened);
    EXPECT_TRUE(error.startsWith(QStringLiteral("/dev/none: "))) << error.toStdString();
}

TEST_F(SerialLineTest, ADriverThatCannotSwitchTheDirectionIsRefused)
{
    const PseudoTerminal adapter;
    LineSettings settings = on(adapter.path());
    settings.kernelSwitchesDirection = true;
    SerialLine line(settings);
    QString error;

    const bool opened = line.open(&error);

    EXPECT_FALSE(opened);
    EXPECT_FALSE(line.isOpen());
    EXPECT_EQ(error.toStdString(),
              adapter.path().toStdString()
                  + ": its driver cannot switch the RS-485 direction; leave that to the adapter");
}

TEST_F(SerialLineTest, AnAdapterThatGoesAwayClosesTheLineAtOnce)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);

    adapter.unplug();
    const Duration start = line.now();
    const QByteArray bytes = line.receive(1, start + seconds(3600));

    EXPECT_TRUE(bytes.isEmpty());
    EXPECT_FALSE(line.isOpen());
}

TEST_F(SerialLineTest, AnAdapterThatComesBackAsAnotherDeviceIsFoundUnderItsName)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("usb-adapter"));
    PseudoTerminal before;
    PseudoTerminal after;
    QFile::link(before.path(), name);
    SerialLine line(on(name));
    line.open(nullptr);
    QFile::remove(name);
    before.unplug();
    line.receive(1, line.now() + seconds(3600));
    QFile::link(after.path(), name);

    QString error;
    const bool opened = line.open(&error);
    after.write("hello");
    const QByteArray bytes = line.receive(5, line.now() + seconds(3600));

    EXPECT_TRUE(opened) << error.toStdString();
    EXPECT_EQ(bytes, "hello");
}

TEST_F(SerialLineTest, SpeedAndStopBitsReachThePort)
{
    const PseudoTerminal adapter;
    LineSettings settings = on(adapter.path());
    settings.speed = 19200;
    settings.stopBits = 2;
    SerialLine line(settings);
    QString error;

    ASSERT_TRUE(line.open(&error)) << error.toStdString();

    const termios seen = adapter.settings();
    EXPECT_EQ(cfgetospeed(&seen), static_cast<speed_t>(B19200));
    EXPECT_EQ(seen.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_NE(seen.c_cflag & CSTOPB, 0U);
    EXPECT_EQ(seen.c_lflag & (ICANON | ECHO), 0U);
}

TEST_F(SerialLineTest, InputThatIsDiscardedIsNoReply)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    adapter.write("old");
    const QByteArray first = line.receive(1, line.now() + seconds(3600));

    const int dropped = line.discardInput();
    adapter.write("new");
    const QByteArray second = line.receive(3, line.now() + seconds(3600));

    EXPECT_EQ(first, "o");
    EXPECT_EQ(dropped, 2);
    EXPECT_EQ(second, "new");
}

TEST_F(SerialLineTest, AnEventLoopInTheSameThreadTakesNoBytesAway)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    adapter.write("reply");
    const QByteArray first = line.receive(1, line.now() + seconds(3600));

    QCoreApplication::processEvents();
    const QByteArray rest = line.receive(4, line.now() + seconds(3600));

    EXPECT_EQ(first, "r");
    EXPECT_EQ(rest, "eply");
}

TEST_F(SerialLineTest, SilenceCountsFromBytesThatCameBeforeAnybodyLooked)
{
    constexpr auto gap = std::chrono::milliseconds(20);
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    std::this_thread::sleep_for(gap);
    adapter.write("late");
    const Duration before = line.now();

    const bool silent = line.awaitSilence(gap, before + seconds(3600));

    EXPECT_TRUE(silent);
    EXPECT_GE(line.now() - before, gap);
}

TEST_F(SerialLineTest, SilenceCountsFromTheLastByteThatCameMeanwhile)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    const Duration before = line.now();
    adapter.write("chatter");

    const bool silent =
        line.awaitSilence(std::chrono::milliseconds(20), line.now() + seconds(3600));

    EXPECT_TRUE(silent);
    EXPECT_EQ(line.discardInput(), 0) << "what came meanwhile is dropped";
    EXPECT_GE(line.now() - before, std::chrono::milliseconds(40));
}
