// SPDX-License-Identifier: MIT
// What a serial line waits for, until when, and what ends it.
#include "serial_fixture.h"

#include <sys/ioctl.h>

#include <ctime>
#include <thread>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// A line over an adapter, open.
class SerialWaits : public SerialLineTest {
protected:
    SerialWaits() { line.open(nullptr); }

    PseudoTerminal adapter;
    SerialLine line { on(adapter.path()) };
};

/// What this thread has used of the processor.
Duration processorTime()
{
    timespec time {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return seconds(time.tv_sec)
        + std::chrono::duration_cast<Duration>(std::chrono::nanoseconds(time.tv_nsec));
}

} // namespace

TEST_F(SerialWaits, APartOfAReplyIsGivenAtTheDeadline)
{
    adapter.write("a");
    const Duration deadline = line.now() + milliseconds(20);

    const QByteArray bytes = line.receive(2, deadline);

    EXPECT_EQ(bytes, "a");
    EXPECT_GE(line.now(), deadline);
    EXPECT_TRUE(line.isOpen());
}

TEST_F(SerialWaits, AReplyThatComesInTwoPartsIsOne)
{
    const int near = ::open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    adapter.write("ab");
    std::thread farEnd([&] {
        int waiting = 1;
        while (waiting > 0 && ioctl(near, FIONREAD, &waiting) == 0)
            std::this_thread::yield();
        adapter.write("cde"); // once the first part was taken
    });

    const QByteArray bytes = line.receive(4, line.now() + seconds(3600));

    farEnd.join();
    close(near);
    EXPECT_EQ(bytes, "abcd");
    EXPECT_EQ(line.receive(1, line.now() + seconds(3600)), "e") << "it stays in the line";
}

TEST_F(SerialWaits, NothingIsGivenWhereNothingCame)
{
    const QByteArray bytes = line.receive(2, line.now() + milliseconds(5));

    EXPECT_EQ(bytes, "");
    EXPECT_TRUE(line.isOpen());
}

TEST_F(SerialWaits, ADeadlineThatHasPassedStillTakesWhatIsThere)
{
    adapter.write("ab");

    EXPECT_EQ(line.receive(2, line.now() - seconds(1)), "ab");
}

TEST_F(SerialWaits, NobodyWaitsForNoByte)
{
    adapter.write("ab");

    EXPECT_EQ(line.receive(0, line.now() + seconds(3600)), "");
    EXPECT_EQ(line.receive(-1, line.now() + seconds(3600)), "");
    EXPECT_EQ(line.receive(2, line.now() + seconds(3600)), "ab");
}

TEST_F(SerialWaits, AnAdapterThatGoesAwayEndsTheWaitForTheRest)
{
    adapter.write("ab");
    line.receive(1, line.now() + seconds(3600));

    adapter.unplug();
    line.receive(5, line.now() + seconds(3600));

    EXPECT_FALSE(line.isOpen());
}

TEST_F(SerialWaits, AnAdapterThatGoesAwayIsNoticedAsSomethingIsSent)
{
    adapter.unplug();

    const bool sent = line.send("request");

    EXPECT_FALSE(sent);
    EXPECT_FALSE(line.isOpen());
}

TEST_F(SerialWaits, EverythingThatCameIsDiscarded)
{
    adapter.write(QByteArray(600, 'x'));
    ASSERT_EQ(line.receive(1, line.now() + seconds(3600)), "x");

    EXPECT_EQ(line.discardInput(), 599);
    EXPECT_TRUE(line.isOpen());
}

TEST_F(SerialWaits, SilenceBeginsBehindTheLastByteThatWasSent)
{
    const Duration before = line.now();
    ASSERT_TRUE(line.send(QByteArray(20, 'x'))); // 20.8 ms at 9600 bit/s

    const bool silent = line.awaitSilence(milliseconds(1), before + seconds(3600));

    EXPECT_TRUE(silent);
    EXPECT_GE(line.now() - before, milliseconds(21));
}

TEST_F(SerialWaits, ALineThatIsNotSilentLongEnoughIsNotAwaitedBeyondTheDeadline)
{
    ASSERT_TRUE(line.send("x"));

    EXPECT_FALSE(line.awaitSilence(seconds(3600), line.now() + milliseconds(5)));
    EXPECT_TRUE(line.isOpen());
}

TEST_F(SerialWaits, WaitingForSilenceTakesNoProcessor)
{
    ASSERT_TRUE(line.send("x"));
    const Duration before = processorTime();

    line.awaitSilence(milliseconds(100), line.now() + seconds(3600));

    EXPECT_LT(processorTime() - before, milliseconds(50));
}

TEST_F(SerialWaits, AFrameThatNobodyTakesIsGivenUp)
{
    const QByteArray more(20'000, 'x'); // than a terminal has room for
    const Duration before = processorTime();
    LineSettings fast = line.settings();
    fast.speed = 4'000'000;
    line.close();
    SerialLine full(fast);
    ASSERT_TRUE(full.open(nullptr));
    const Duration start = full.now();

    const bool sent = full.send(more); // 50 ms on the wire

    EXPECT_FALSE(sent);
    EXPECT_FALSE(full.isOpen());
    EXPECT_GE(full.now() - start, milliseconds(1100)) << "a second and twice its time";
    EXPECT_LT(processorTime() - before, milliseconds(500)) << "of more than a second";
}

TEST_F(SerialWaits, AFrameThatFindsNoRoomWaitsForIt)
{
    const int near =
        ::open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    int filled = 0;
    while (::write(near, "x", 1) == 1)
        ++filled;
    QByteArray arrived;
    std::thread farEnd([&] { arrived = adapter.read(filled + 7); });

    const bool sent = line.send("request");

    if (!sent)
        adapter.unplug(); // ends what the far end waits for
    farEnd.join();
    close(near);
    EXPECT_TRUE(sent);
    EXPECT_EQ(arrived.right(7), "request");
}
