// SPDX-License-Identifier: MIT
// Frames for readers on other threads: none twice, and what was missed is told.
#include "host/line/memory_line.h"
#include "host/recording/frame_tap.h"

#include "host_bytes.h"

#include <gtest/gtest.h>

#include <thread>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

RecordedFrame numbered(int number)
{
    return { milliseconds(number), true, QByteArray::number(number) };
}

QVector<RecordedFrame> numbers(int first, int last)
{
    QVector<RecordedFrame> frames;
    for (int number = first; number <= last; ++number)
        frames.append(numbered(number));
    return frames;
}

std::string textOf(const TappedFrames &taken)
{
    QByteArray text;
    for (const RecordedFrame &frame : taken.frames)
        text += (frame.isRequest ? "" : "<") + frame.bytes + ' ';
    return text.toStdString();
}

/// A line of which each request is answered by its own bytes in small letters.
std::unique_ptr<MemoryLine> answering()
{
    return std::make_unique<MemoryLine>([](const QByteArray &request) {
        return MemoryLine::Answer { request.toLower(), milliseconds(1) };
    });
}

} // namespace

TEST(FrameTap, EachReaderGetsEachFrameOnce)
{
    FrameTap tap;
    tap.add(numbers(1, 2), milliseconds(7));

    const TappedFrames first = tap.since(0);
    tap.add(numbers(3, 3), milliseconds(8));
    const TappedFrames second = tap.since(first.next);
    const TappedFrames other = tap.since(0);
    const TappedFrames nothing = tap.since(second.next);

    EXPECT_EQ(textOf(first), "1 2 ");
    EXPECT_EQ(first.wallClockOffset, milliseconds(7));
    EXPECT_EQ(textOf(second), "3 ");
    EXPECT_EQ(second.wallClockOffset, milliseconds(8));
    EXPECT_EQ(textOf(other), "1 2 3 ");
    EXPECT_EQ(textOf(nothing), "");
    EXPECT_EQ(nothing.next, 3U);
}

TEST(FrameTap, ALateReaderIsToldHowManyItMissed)
{
    FrameTap tap(3);
    tap.add(numbers(1, 2), {});
    const quint64 seen = tap.since(0).next;

    tap.add(numbers(3, 7), {});
    const TappedFrames taken = tap.since(seen);

    EXPECT_EQ(textOf(taken), "5 6 7 ");
    EXPECT_EQ(taken.missed, 2U);
}

TEST(FrameTap, AReaderOfWhatComesBeginsWithTheNextFrame)
{
    FrameTap tap;
    tap.add(numbers(1, 2), {});
    const quint64 begun = tap.next();

    tap.add(numbers(3, 3), {});

    EXPECT_EQ(textOf(tap.since(begun)), "3 ");
}

TEST(FrameTap, ANumberThatIsStillToComeGivesNothing)
{
    FrameTap tap;
    tap.add(numbers(1, 2), {});

    const TappedFrames taken = tap.since(9);

    EXPECT_EQ(textOf(taken), "");
    EXPECT_EQ(taken.next, 2U);
    EXPECT_EQ(taken.missed, 0U);
}

TEST(FrameTap, KeepsOneFrameAtLeast)
{
    FrameTap tap(0);

    tap.add(numbers(1, 2), {});

    EXPECT_EQ(textOf(tap.since(0)), "2 ");
}

TEST(FrameTap, ReadersAndTheLineMayBeOnDifferentThreads)
{
    FrameTap tap(16);
    quint64 got = 0;

    std::thread line([&tap] {
        for (int number = 1; number <= 2000; ++number)
            tap.add({ numbered(number) }, {});
    });
    for (quint64 next = 0; next < 2000;) {
        const TappedFrames taken = tap.since(next);
        got += static_cast<quint64>(taken.frames.size()) + taken.missed;
        next = taken.next;
    }
    line.join();

    EXPECT_EQ(got, 2000U);
}

TEST(TappingLine, HandsAReplyOverWithTheNextRequest)
{
    const auto tap = std::make_shared<FrameTap>();
    TappingLine line(answering(), tap);

    line.send("AAAA");
    const std::string sent = textOf(tap->since(0));
    line.receive(4, line.now() + milliseconds(100));
    const std::string answered = textOf(tap->since(0));
    line.send("BBBB");
    const std::string followed = textOf(tap->since(0));

    EXPECT_EQ(sent, "AAAA ");
    EXPECT_EQ(answered, "AAAA ");
    EXPECT_EQ(followed, "AAAA <aaaa BBBB ");
}

TEST(TappingLine, AReplyInPiecesIsOneFrame)
{
    const auto tap = std::make_shared<FrameTap>();
    TappingLine line(answering(), tap);

    line.send("AAAA");
    line.receive(1, line.now() + milliseconds(100));
    line.receive(3, line.now() + milliseconds(100));
    line.send("BBBB");

    EXPECT_EQ(textOf(tap->since(0)), "AAAA <aaaa BBBB ");
}

TEST(TappingLine, HandsNothingOverThatWasNotSent)
{
    const auto tap = std::make_shared<FrameTap>();
    auto broken = answering();
    broken->unplug();
    TappingLine line(std::move(broken), tap);

    const bool sent = line.send("AAAA");

    EXPECT_FALSE(sent);
    EXPECT_EQ(tap->next(), 0U);
}
