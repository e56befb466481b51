// SPDX-License-Identifier: MIT
// The serial line: exclusive use, lasting names, and an adapter that goes away.
#include "host/line/port_list.h"
#include "serial_fixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <thread>

using namespace dx4::host;
using std::chrono::seconds;

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

namespace {

/// Another program that has a port open, under a name of its own, and took no lock.
class Stranger {
public:
    Stranger(const PseudoTerminal &adapter, const QString &name)
    {
        EXPECT_EQ(pipe(m_ready), 0);
        m_process = fork();
        if (m_process == 0) {
            close(adapter.farEnd());
            const int port = ::open(QFile::encodeName(name).constData(), O_RDWR | O_NOCTTY);
            const bool told = write(m_ready[1], port >= 0 ? "y" : "n", 1) == 1;
            alarm(60);
            pause();
            _exit(told ? 0 : 1);
        }
        char answer = 0;
        EXPECT_EQ(read(m_ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y');
    }
    ~Stranger()
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        close(m_ready[0]);
        close(m_ready[1]);
    }
    Stranger(const Stranger &) = delete;
    Stranger &operator=(const Stranger &) = delete;

    std::string text() const
    {
        return "korvane_host_test (process " + std::to_string(m_process) + ")";
    }

private:
    pid_t m_process = 0;
    int m_ready[2] = {};
};

} // namespace

TEST_F(SerialLineTest, APortThatAnotherProgramHasOpenWithoutALockIsRefused)
{
    const PseudoTerminal adapter;
    const QTemporaryDir folder;
    const QString other = folder.filePath(QStringLiteral("other-name"));
    ASSERT_TRUE(QFile::link(adapter.path(), other));
    const Stranger stranger(adapter, other);
    const tcflag_t before = adapter.settings().c_cflag;
    SerialLine line(on(adapter.path()));
    QString error;

    const bool opened = line.open(&error);

    EXPECT_FALSE(opened);
    EXPECT_EQ(error.toStdString(),
              adapter.path().toStdString() + ": in use by " + stranger.text()
                  + ", which took no lock; end it, as two programs on one line disturb each other");
    EXPECT_EQ(adapter.settings().c_cflag, before);
}

TEST_F(SerialLineTest, ASharedPortIsOpenedBesideAProgramWithoutALock)
{
    const PseudoTerminal adapter;
    const Stranger stranger(adapter, adapter.path());
    LineSettings settings = on(adapter.path());
    settings.isShared = true;
    SerialLine line(settings);
    SerialLine second(settings);
    QString error;

    const bool opened = line.open(&error);
    const bool openedTwice = second.open(nullptr);

    EXPECT_TRUE(opened) << error.toStdString();
    EXPECT_FALSE(openedTwice) << "a lock counts for those who share, too";
}

TEST_F(SerialLineTest, OneDeviceUnderTwoNamesIsOnePort)
{
    const PseudoTerminal adapter;
    const QTemporaryDir folder;
    const QString other = folder.filePath(QStringLiteral("other-name"));
    ASSERT_TRUE(QFile::link(adapter.path(), other));
    SerialLine first(on(adapter.path()));
    SerialLine second(on(other));
    QString error;
    ASSERT_TRUE(first.open(&error)) << error.toStdString();

    const bool opened = second.open(&error);

    EXPECT_FALSE(opened);
    EXPECT_EQ(error.toStdString(),
              other.toStdString() + ": in use by korvane_host_test (process "
                  + std::to_string(getpid()) + ")");
}

TEST_F(SerialLineTest, ARefusedOpenTouchesNoSettingOfTheHolder)
{
    const PseudoTerminal adapter;
    const int holder = ::open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(flock(holder, LOCK_EX | LOCK_NB), 0);
    termios held = adapter.settings();
    cfsetspeed(&held, B38400);
    held.c_iflag |= IXON;
    ASSERT_EQ(tcsetattr(holder, TCSANOW, &held), 0);
    // In packet mode the far end hears of each change of the flow control, also of one undone.
    int packetMode = 1;
    ASSERT_EQ(ioctl(adapter.farEnd(), TIOCPKT, &packetMode), 0);
    SerialLine line(on(adapter.path()));

    const bool opened = line.open(nullptr);

    pollfd heard {};
    heard.fd = adapter.farEnd();
    heard.events = POLLIN | POLLPRI;
    const int changes = poll(&heard, 1, 0);
    const termios seen = adapter.settings();
    close(holder);
    EXPECT_FALSE(opened);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(cfgetospeed(&seen), static_cast<speed_t>(B38400));
}

TEST_F(SerialLineTest, AnOpenPortIsInExclusiveMode)
{
    const PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    ASSERT_TRUE(line.open(nullptr));

    const int another =
        ::open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);

    // Root alone gets past it.
    int isExclusive = another < 0 && errno == EBUSY ? 1 : 0;
    if (another >= 0) {
        EXPECT_EQ(ioctl(another, TIOCGEXCL, &isExclusive), 0);
        close(another);
    }
    EXPECT_EQ(isExclusive, 1);
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

TEST_F(SerialLineTest, APortThatNobodyNamesIsRefusedInThoseWords)
{
    SerialLine unnamed { LineSettings() };
    QString error;

    const bool opened = unnamed.open(&error);

    EXPECT_FALSE(opened);
    EXPECT_EQ(error,
              QStringLiteral("no serial port is named; a configuration has it as port under "
                             "[line]"));
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

TEST_F(SerialLineTest, AnAdapterThatGoesAwayEndsTheWaitForSilence)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);

    adapter.unplug();
    const bool silent = line.awaitSilence(std::chrono::milliseconds(1), line.now() + seconds(3600));

    EXPECT_FALSE(silent);
    EXPECT_FALSE(line.isOpen());
}

TEST_F(SerialLineTest, AnAdapterThatGoesAwayIsNoticedAsInputIsDiscarded)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);

    adapter.unplug();
    const int dropped = line.discardInput();

    EXPECT_EQ(dropped, 0);
    EXPECT_FALSE(line.isOpen());
}

TEST_F(SerialLineTest, AClosedLineNeitherSendsNorWaits)
{
    SerialLine line(on(QStringLiteral("/dev/none")));
    const Duration never = line.now() + seconds(3600);

    EXPECT_FALSE(line.send("x"));
    EXPECT_TRUE(line.receive(1, never).isEmpty());
    EXPECT_EQ(line.discardInput(), 0);
    EXPECT_FALSE(line.awaitSilence(seconds(1800), never));
}

TEST_F(SerialLineTest, AFrameThatTheKernelTakesInPartsIsSentWhole)
{
    const PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    QByteArray sent;
    for (int i = 0; i < 200'000; ++i) // many times what a terminal has room for
        sent.append(static_cast<char>(i * 7 / 251));
    QByteArray arrived;
    std::thread farEnd([&] { arrived = adapter.read(200'000); });

    const bool isSent = line.send(sent);

    if (!isSent)
        line.close(); // ends what the far end waits for
    farEnd.join();
    EXPECT_TRUE(isSent);
    EXPECT_TRUE(arrived == sent);
}

namespace {

volatile std::sig_atomic_t signalsLeft = 0;
volatile int replyTo = -1; // far end of the line that the last signal writes to

void replyAtLast(int)
{
    signalsLeft = signalsLeft - 1;
    if (signalsLeft == 0) [[maybe_unused]]
        const auto written = ::write(replyTo, "reply", 5);
}

/// A signal each millisecond that breaks into the calls of this thread.
class Interruptions {
public:
    Interruptions(int count, int farEnd)
    {
        signalsLeft = count;
        replyTo = farEnd;
        struct sigaction action = {};
        action.sa_handler = replyAtLast; // without SA_RESTART
        sigaction(SIGALRM, &action, &m_former);
        const itimerval each { { 0, 1000 }, { 0, 1000 } };
        setitimer(ITIMER_REAL, &each, nullptr);
    }
    ~Interruptions()
    {
        const itimerval never {};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &m_former, nullptr);
    }
    Interruptions(const Interruptions &) = delete;
    Interruptions &operator=(const Interruptions &) = delete;

private:
    struct sigaction m_former = {};
};

} // namespace

TEST_F(SerialLineTest, SignalsDoNotEndTheWaitForAReply)
{
    const PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    const Interruptions signals(5, adapter.farEnd());

    const QByteArray bytes = line.receive(5, line.now() + seconds(3600));

    EXPECT_EQ(bytes, "reply");
    EXPECT_LE(signalsLeft, 0);
}

TEST_F(SerialLineTest, SignalsDoNotShortenTheWaitForSilence)
{
    constexpr auto gap = std::chrono::milliseconds(20);
    const PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    // What the line heard last is the reply that comes amid the signals.
    const Interruptions signals(5, adapter.farEnd());
    const Duration before = line.now();

    const bool silent = line.awaitSilence(gap, before + seconds(3600));

    EXPECT_TRUE(silent);
    EXPECT_TRUE(line.isOpen());
    EXPECT_GE(line.now() - before, gap);
}

namespace {

/// Lets the rest of a reply arrive when the line sleeps for it.
class RestMeanwhile : public Waits {
public:
    explicit RestMeanwhile(PseudoTerminal &adapter)
        : m_adapter(adapter)
    {
    }

    short forEvents(int descriptor, short events, Duration deadline) override
    {
        ++wakeUps;
        return blockingWaits().forEvents(descriptor, events, deadline);
    }
    void until(Duration moment) override
    {
        slept.push_back(moment);
        m_adapter.write("eply");
    }
    void giveWay() override { }

    int wakeUps = 0;
    std::vector<Duration> slept; ///< until when

private:
    PseudoTerminal &m_adapter;
};

} // namespace

TEST_F(SerialLineTest, TheRestOfAReplyIsSleptForAndNotWokenForByteByByte)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    RestMeanwhile waits(adapter);
    line.setWaits(waits);
    adapter.write("r");
    const Duration before = line.now();

    const QByteArray reply = line.receive(5, before + seconds(3600));

    EXPECT_EQ(reply, "reply");
    EXPECT_EQ(waits.wakeUps, 2);
    ASSERT_EQ(waits.slept.size(), 1U);
    EXPECT_GE(waits.slept.front(), before + line.settings().wireTime(4));
    EXPECT_LE(waits.slept.front(), line.now() + line.settings().wireTime(4));
}

TEST_F(SerialLineTest, TheRestOfAReplyIsSleptForToTheDeadlineAtMost)
{
    PseudoTerminal adapter;
    SerialLine line(on(adapter.path()));
    line.open(nullptr);
    RestMeanwhile waits(adapter);
    line.setWaits(waits);
    adapter.write("r");
    const Duration deadline = line.now();

    line.receive(5, deadline);

    EXPECT_EQ(waits.slept, std::vector<Duration> { deadline });
}
