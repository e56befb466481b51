// SPDX-License-Identifier: MIT
// Which port is opened, which is refused and why, and what is set on it.
#include "serial_fixture.h"

#include <QDir>
#include <QLockFile>

#include <sys/stat.h>
#include <sys/wait.h>

using namespace dx4::host;
using std::chrono::seconds;

namespace {

using SerialOpening = SerialLineTest;

/// Why a line with these settings does not open; empty where it does.
std::string refusalOf(const LineSettings &settings)
{
    SerialLine line(settings);
    QString error;
    const bool opened = line.open(&error);
    EXPECT_EQ(opened, error.isEmpty());
    EXPECT_EQ(line.isOpen(), opened);
    return error.toStdString();
}

/// The same as a user who owns nothing, in a process of its own.
std::string refusalToAStranger(const QString &port)
{
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const bool isStranger = getuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0);
        const std::string text = isStranger ? refusalOf(on(port)) : "no other user";
        const bool told =
            ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    std::string text;
    char byte = 0;
    while (read(ends[0], &byte, 1) == 1)
        text += byte;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return text;
}

} // namespace

TEST_F(SerialOpening, AnOpenLineStaysAsItIs)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    adapter.write("reply");

    const bool openedAgain = line.open(nullptr);

    EXPECT_TRUE(openedAgain);
    EXPECT_EQ(line.receive(5, line.now() + seconds(3600)), "reply");
}

TEST_F(SerialOpening, WhatCameBeforeIsNoReply)
{
    PseudoTerminal adapter;
    const int near = open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    adapter.write("old");
    SerialLine line(on(adapter.path()));

    line.open(nullptr);

    close(near);
    adapter.write("new");
    EXPECT_EQ(line.receive(3, line.now() + seconds(3600)), "new");
}

TEST_F(SerialOpening, SilenceCountsFromTheOpeningOn)
{
    constexpr auto gap = std::chrono::milliseconds(20);
    const PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    const Duration before = line.now();
    line.open(nullptr);

    const bool silent = line.awaitSilence(gap, before + seconds(3600));

    EXPECT_TRUE(silent);
    EXPECT_GE(line.now() - before, gap);
}

TEST_F(SerialOpening, WhyAPortIsNotOpenNeedNotBeAskedFor)
{
    EXPECT_FALSE(SerialLine { LineSettings() }.open(nullptr));
    EXPECT_FALSE(SerialLine { on(QStringLiteral("/dev/none")) }.open(nullptr));
}

TEST_F(SerialOpening, APortThatDoesNotExistIsRefusedInTheSystemsWords)
{
    EXPECT_EQ(refusalOf(on(QStringLiteral("/dev/none"))), "/dev/none: No such file or directory");
}

TEST_F(SerialOpening, WhatIsNoTerminalIsRefused)
{
    EXPECT_NE(refusalOf(on(QStringLiteral("/dev/null"))), "");
}

TEST_F(SerialOpening, ASpeedThatNoPortHasIsRefused)
{
    const PseudoTerminal adapter;
    LineSettings settings = on(adapter.path());
    settings.speed = 0;

    EXPECT_EQ(refusalOf(settings), adapter.path().toStdString() + ": Invalid baud rate value");
}

TEST_F(SerialOpening, ALineThatWasRefusedHoldsNothing)
{
    const PseudoTerminal adapter;
    LineSettings settings = on(adapter.path());
    settings.kernelSwitchesDirection = true;
    SerialLine refused(settings);
    ASSERT_FALSE(refused.open(nullptr));

    EXPECT_EQ(refusalOf(on(adapter.path())), "");
}

TEST_F(SerialOpening, APortThatThisUserMayNotOpenSaysWhoMay)
{
    const PseudoTerminal adapter;
    ASSERT_EQ(chmod(adapter.path().toLatin1().constData(), 0), 0);

    const std::string refusal = refusalToAStranger(adapter.path());

    EXPECT_EQ(refusal,
              adapter.path().toStdString() + ": no permission; its owner alone may open it");
}

TEST_F(SerialOpening, APortWithALockFileIsInUse)
{
    const PseudoTerminal adapter;
    QString name = adapter.path().mid(5);
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    QLockFile lock(QDir(QStringLiteral("/var/lock")).filePath(QStringLiteral("LCK..") + name));
    if (!lock.tryLock())
        GTEST_SKIP() << "this user may write no lock file";

    EXPECT_EQ(refusalOf(on(adapter.path())),
              adapter.path().toStdString() + ": in use by a program of another user");
}

TEST_F(SerialOpening, OneStopBitReachesThePortToo)
{
    const PseudoTerminal adapter;
    const int near = open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios before = adapter.settings();
    before.c_cflag |= CSTOPB;
    ASSERT_EQ(tcsetattr(near, TCSANOW, &before), 0);
    close(near);
    SerialLine line(on(adapter.path()));

    ASSERT_TRUE(line.open(nullptr));

    const termios seen = adapter.settings();
    EXPECT_EQ(seen.c_cflag & CSTOPB, 0U);
    EXPECT_EQ(cfgetospeed(&seen), static_cast<speed_t>(B9600));
}
