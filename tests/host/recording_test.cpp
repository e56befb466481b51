// SPDX-License-Identifier: MIT
// The ring of the last frames, and the file that protocol analysers read.
#include "host/line/memory_line.h"
#include "host/recording/pcap_file.h"
#include "host/recording/recording_line.h"

#include "host_bytes.h"
#include "missing_tool.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

/// 10000 bit/s: a character takes 1 ms.
LineSettings slow()
{
    LineSettings settings;
    settings.speed = 10000;
    return settings;
}

MemoryLine::Answer hello(const QByteArray &)
{
    return { QByteArray("hello"), milliseconds(10) };
}

MemoryLine::Answer silence(const QByteArray &)
{
    return {};
}

QVector<RecordedFrame> readAndWrite()
{
    return { { milliseconds(0), true, frameOf("01 03 D0 00 00 01") },
             { milliseconds(20), false, frameOf("01 03 02 12 34") },
             { milliseconds(30), true, frameOf("02 06 10 01 00 05") },
             { milliseconds(50), false, frameOf("02 86 02") } };
}

std::string textOf(const QString &text)
{
    return text.toStdString();
}

class PcapFile : public ::testing::Test {
protected:
    QString fill(const QByteArray &content) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    QByteArray content() const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("line.pcap"));
    QString error;
};

} // namespace

TEST(FrameRing, ForgetsTheOldestBeyondItsCapacity)
{
    FrameRing ring(2);

    ring.addRequest(milliseconds(1), "a");
    ring.addReplyBytes(milliseconds(2), "b", milliseconds(5));
    ring.addRequest(milliseconds(3), "c");

    EXPECT_EQ(ring.frames(),
              (QVector<RecordedFrame> { { milliseconds(2), false, "b" },
                                        { milliseconds(3), true, "c" } }));
    EXPECT_EQ(ring.forgotten(), 1U);
}

TEST(FrameRing, KeepsOneFrameAtLeast)
{
    FrameRing ring(0);

    ring.addRequest(milliseconds(1), "a");
    ring.addRequest(milliseconds(2), "b");

    EXPECT_EQ(ring.frames(), (QVector<RecordedFrame> { { milliseconds(2), true, "b" } }));
}

TEST(RecordedFrame, IsTheSameInTimeKindAndBytes)
{
    const RecordedFrame frame { milliseconds(1), true, "a" };

    EXPECT_TRUE(frame == (RecordedFrame { milliseconds(1), true, "a" }));
    EXPECT_FALSE(frame == (RecordedFrame { milliseconds(2), true, "a" }));
    EXPECT_FALSE(frame == (RecordedFrame { milliseconds(1), false, "a" }));
    EXPECT_FALSE(frame == (RecordedFrame { milliseconds(1), true, "b" }));
}

TEST(FrameRing, BytesAfterALongerPauseAreAnotherReply)
{
    FrameRing ring;

    ring.addReplyBytes(milliseconds(2), "a", milliseconds(5));
    ring.addReplyBytes(milliseconds(7), "b", milliseconds(5));
    ring.addReplyBytes(milliseconds(13), "c", milliseconds(5));

    EXPECT_EQ(ring.frames(),
              (QVector<RecordedFrame> { { milliseconds(7), false, "ab" },
                                        { milliseconds(13), false, "c" } }));
}

TEST(FrameRing, BytesWithoutARequestBetweenAreOneReply)
{
    FrameRing ring;

    ring.addRequest(milliseconds(1), "a");
    ring.addReplyBytes(milliseconds(2), "bc", milliseconds(5));
    ring.addReplyBytes(milliseconds(4), "d", milliseconds(5));
    ring.addReplyBytes(milliseconds(5), "", milliseconds(5));

    EXPECT_EQ(ring.frames(),
              (QVector<RecordedFrame> { { milliseconds(1), true, "a" },
                                        { milliseconds(4), false, "bcd" } }));
}

TEST(FrameRing, HandsOverWhatNothingCanBeAddedTo)
{
    FrameRing ring;
    ring.addRequest(milliseconds(1), "a");
    const QVector<RecordedFrame> request = ring.takeEnded();
    ring.addReplyBytes(milliseconds(2), "b", milliseconds(5));
    const QVector<RecordedFrame> replyThatMayGoOn = ring.takeEnded();
    ring.addReplyBytes(milliseconds(3), "c", milliseconds(5));
    ring.addRequest(milliseconds(4), "d");

    const QVector<RecordedFrame> rest = ring.takeEnded();

    EXPECT_EQ(request, (QVector<RecordedFrame> { { milliseconds(1), true, "a" } }));
    EXPECT_EQ(replyThatMayGoOn, QVector<RecordedFrame>());
    EXPECT_EQ(rest,
              (QVector<RecordedFrame> { { milliseconds(3), false, "bc" },
                                        { milliseconds(4), true, "d" } }));
    EXPECT_EQ(ring.frames(), QVector<RecordedFrame>());
    EXPECT_EQ(ring.forgotten(), 0U);
}

TEST(RecordingLine, KeepsRequestAndReplyWithTheLinesTimes)
{
    MemoryLine line(hello, slow());
    FrameRing ring;
    RecordingLine recording(line, ring);

    recording.send("12345678");
    const QByteArray received = recording.receive(5, milliseconds(100));

    EXPECT_EQ(received, "hello");
    EXPECT_EQ(ring.frames(),
              (QVector<RecordedFrame> { { milliseconds(0), true, "12345678" },
                                        { milliseconds(8 + 10 + 5), false, "hello" } }));
}

TEST(RecordingLine, TakesBytesUpToTwentyMillisecondsApartForOneReply)
{
    for (const auto &[pause, replies] :
         { std::pair(Duration(20'000), 1), std::pair(Duration(20'001), 2) }) {
        MemoryLine line(silence, slow());
        FrameRing ring;
        RecordingLine recording(line, ring);
        line.inject("a", Duration(0));
        recording.receive(1, milliseconds(100));

        line.inject("b", pause);
        recording.receive(1, milliseconds(100));

        EXPECT_EQ(ring.frames().size(), replies) << pause.count();
    }
}

TEST(RecordingLine, KeepsNothingThatDidNotLeave)
{
    MemoryLine line(silence, slow());
    FrameRing ring;
    RecordingLine recording(line, ring);
    line.unplug();

    const bool sent = recording.send("12345678");

    EXPECT_FALSE(sent);
    EXPECT_TRUE(ring.frames().isEmpty());
}

TEST_F(PcapFile, ReadsBackWhatWasWritten)
{
    const bool written = writePcap(path, readAndWrite(), milliseconds(0), &error);

    const auto frames = readPcap(path, &error);

    EXPECT_TRUE(written) << textOf(error);
    ASSERT_TRUE(frames.has_value()) << textOf(error);
    EXPECT_EQ(*frames, readAndWrite());
}

TEST_F(PcapFile, TimesMoveByTheOffset)
{
    writePcap(path, { { milliseconds(1500), true, "a" } }, std::chrono::seconds(1'700'000'000),
              &error);

    const auto frames = readPcap(path, &error);

    ASSERT_TRUE(frames.has_value()) << textOf(error);
    EXPECT_EQ(frames->constFirst().time.count(), 1'700'000'001'500'000);
}

TEST_F(PcapFile, StartsWithTheHeaderOfPacketsThatBeginWithIp)
{
    writePcap(path, {}, milliseconds(0), &error);

    EXPECT_EQ(content(), bytesOf("D4C3B2A1 02000400 00000000 00000000 FFFF0000 65000000"));
}

TEST_F(PcapFile, ARequestIsAUdpPacketToPort502)
{
    writePcap(path, { { Duration(1'000'002), true, bytesOf("0103") } }, milliseconds(0), &error);

    EXPECT_EQ(content().mid(24),
              bytesOf("01000000 02000000 1E000000 1E000000"
                      "4500001E 00004000 401126CD 0A000001 0A000002"
                      "C41801F6 000A0000 0103"));
}

TEST_F(PcapFile, AFileThatIsNoCaptureIsRefused)
{
    const auto frames = readPcap(fill("not a capture, but longer than a header"), &error);

    EXPECT_FALSE(frames.has_value());
    EXPECT_EQ(textOf(error), textOf(path) + ": no pcap file with times in microseconds");
}

TEST_F(PcapFile, AFileShorterThanAnyCaptureIsRefused)
{
    for (const char *const content : { "", "abc" }) {
        EXPECT_FALSE(readPcap(fill(content), &error).has_value());
        EXPECT_EQ(textOf(error), textOf(path) + ": no pcap file with times in microseconds");
    }
}

TEST(WallClockOffset, IsLessTheFurtherTheLinesClockWent)
{
    EXPECT_LT(wallClockOffset(std::chrono::hours(1)), wallClockOffset(Duration(0)));
}

TEST_F(PcapFile, ACaptureOfTheNewerKindIsRefusedWithItsConversion)
{
    const auto frames =
        readPcap(fill(QByteArray("\n\r\r\n\x1c\0\0\0\x4d\x3c\x2b\x1a", 12)), &error);

    EXPECT_FALSE(frames.has_value());
    EXPECT_EQ(textOf(error),
              textOf(path) + ": is a pcapng capture, and pcap is read; \"editcap -F pcap "
                  + textOf(path) + " line.pcap\" converts it");
}

TEST_F(PcapFile, AFileThatEndsInsideAPacketIsRefused)
{
    writePcap(path, readAndWrite(), milliseconds(0), &error);
    const QByteArray whole = content();

    const auto frames = readPcap(fill(whole.left(whole.size() - 1)), &error);

    EXPECT_FALSE(frames.has_value());
    EXPECT_EQ(textOf(error), textOf(path) + ": the file ends inside a packet");
}

TEST_F(PcapFile, ARefusalNeedsNoPlaceForItsReason)
{
    EXPECT_FALSE(readPcap(path, nullptr).has_value());
}

TEST_F(PcapFile, AMissingFileIsNamed)
{
    const auto frames = readPcap(path, &error);

    EXPECT_FALSE(frames.has_value());
    EXPECT_EQ(textOf(error), textOf(path) + ": No such file or directory");
}

TEST_F(PcapFile, AFolderThatDoesNotExistIsNamed)
{
    const QString nowhere = folder.filePath(QStringLiteral("none/line.pcap"));

    const bool written = writePcap(nowhere, {}, milliseconds(0), &error);

    EXPECT_FALSE(written);
    EXPECT_TRUE(error.startsWith(nowhere)) << textOf(error);
}

TEST_F(PcapFile, TsharkDecodesItAsModbusRtu)
{
    const QString tshark = QStandardPaths::findExecutable(QStringLiteral("tshark"));
    if (tshark.isEmpty())
        END_WITHOUT("tshark");
    writePcap(path, readAndWrite(), std::chrono::seconds(1'700'000'000), &error);
    QStringList arguments { QStringLiteral("-r"), path };
    arguments << QStringLiteral("-o mbrtu.udp.port:502 -o mbrtu.crc_verification:TRUE -T fields "
                                "-E separator=, -e frame.time_epoch -e mbrtu.crc16.status "
                                "-e modbus.func_code -e modbus.exception_code -e _ws.malformed")
                     .split(QLatin1Char(' '));

    QProcess process;
    process.start(tshark, arguments);
    process.waitForFinished(-1);

    EXPECT_EQ(process.readAllStandardOutput().toStdString(),
              "1700000000.000000000,1,3,,\n"
              "1700000000.020000000,1,3,,\n"
              "1700000000.030000000,1,6,,\n"
              "1700000000.050000000,1,6,2,\n");
}

TEST(RecordingLineTest, WaitsAsItsLineIsToldTo)
{
    struct Told : MemoryLine {
        Told()
            : MemoryLine(silence)
        {
        }
        void setWaits(Waits &waits) override { told = &waits; }
        Waits *told = nullptr;
    };
    Told line;
    FrameRing ring(4);
    RecordingLine recording(line, ring);

    recording.setWaits(blockingWaits());

    EXPECT_EQ(line.told, &blockingWaits());
}
