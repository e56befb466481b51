// SPDX-License-Identifier: MIT
// A recording on a disk that fills up.
#include "cli/line/recording.h"

#include "host/recording/pcap_file.h"

#include "full_disk.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace dx4;

namespace {

constexpr int headBytes = 24;
constexpr int frameBytes = 16 + 28 + 8; // heads of record and packet, request

host::RecordedFrame request(int number)
{
    return { std::chrono::milliseconds(number), true, QByteArray(8, static_cast<char>(number)) };
}

class RecordingTest : public ::testing::Test {
protected:
    qint64 size() const { return QFile(path).size(); }

    void fill(const QByteArray &content) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("line.pcap"));
};

} // namespace

TEST_F(RecordingTest, FramesAreInTheFileAsTheyCome)
{
    cli::Recording recording(path);
    ASSERT_TRUE(recording.begin(host::Duration { 0 }));
    const qint64 begun = size();

    recording.add({ request(1), request(2) });

    EXPECT_EQ(begun, headBytes);
    EXPECT_EQ(size(), headBytes + 2 * frameBytes);
    EXPECT_EQ(recording.frames(), 2U);
}

TEST_F(RecordingTest, FrameThatDoesNotFitIsTakenOutAndEndsIt)
{
    cli::Recording recording(path);
    ASSERT_TRUE(recording.begin(host::Duration { 0 }));
    bool added = true;
    bool addedLater = true;
    {
        const FullDisk disk(headBytes + 2 * frameBytes - 1);
        added = recording.add({ request(1), request(2), request(3) });
    }
    addedLater = recording.add({ request(4) });

    const auto kept = host::readPcap(path, nullptr);

    EXPECT_FALSE(added);
    EXPECT_FALSE(addedLater);
    EXPECT_EQ(recording.error(), path + QStringLiteral(": File too large"));
    EXPECT_EQ(recording.frames(), 1U);
    EXPECT_EQ(size(), headBytes + frameBytes);
    ASSERT_TRUE(kept && kept->size() == 1);
    EXPECT_EQ(kept->constFirst().bytes, request(1).bytes);
}

TEST_F(RecordingTest, AskingWhetherItCanBeginLeavesFilesAlone)
{
    cli::Recording anew(path);

    EXPECT_TRUE(anew.canBegin(false));
    EXPECT_FALSE(QFile::exists(path));
    fill("mine");
    EXPECT_TRUE(cli::Recording(path).canBegin(true));
    EXPECT_EQ(size(), 4);
    EXPECT_FALSE(cli::Recording(folder.path()).canBegin(true));
}

TEST_F(RecordingTest, AFileThatIsNoRecordingIsNotReplaced)
{
    cli::Recording recording(path);
    fill("station 1\nF 0.0 = 0\n");

    const bool possible = recording.canBegin(false);

    EXPECT_FALSE(possible);
    EXPECT_EQ(recording.error(),
              path
                  + QStringLiteral(": holds something else than a recording; name another file, or "
                                   "replace it with --force"));
    EXPECT_TRUE(cli::Recording(path).canBegin(true));
}

TEST_F(RecordingTest, AnotherRecordingAndAnEmptyFileAreReplaced)
{
    host::writePcap(path, { request(1) }, host::Duration { 0 }, nullptr);
    QFile cut(path);
    ASSERT_TRUE(cut.resize(cut.size() - 1));

    EXPECT_TRUE(cli::Recording(path).canBegin(false));
    ASSERT_TRUE(cut.resize(0));
    EXPECT_TRUE(cli::Recording(path).canBegin(false));
}

TEST_F(RecordingTest, APipeIsRefusedWithoutWaitingForItsReader)
{
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    cli::Recording recording(path);

    EXPECT_FALSE(recording.canBegin(true));
    EXPECT_FALSE(recording.begin(host::Duration { 0 }));
    EXPECT_EQ(recording.error(), path + QStringLiteral(": is a device or a pipe; name a file"));
}

TEST_F(RecordingTest, ADiskThatIsFullFromTheBeginningLeavesTheOldFile)
{
    fill("old");
    cli::Recording recording(path);
    bool begun = true;
    {
        const FullDisk disk(headBytes - 1);
        begun = recording.begin(host::Duration { 0 });
    }

    EXPECT_FALSE(begun);
    EXPECT_FALSE(recording.add({ request(1) }));
    EXPECT_EQ(recording.error(), path + QStringLiteral(": File too large"));
    EXPECT_EQ(size(), 3);
}

TEST_F(RecordingTest, AFileThatGoesAwayMeanwhileIsTold)
{
    cli::Recording recording(path);
    ASSERT_TRUE(recording.begin(host::Duration { 0 }) && recording.add({ request(1) }));
    QFile::remove(path);

    const bool ended = recording.end();

    EXPECT_FALSE(ended);
    EXPECT_EQ(recording.error(),
              path
                  + QStringLiteral(": was removed or replaced as it was written; its frames are "
                                   "lost"));
}
