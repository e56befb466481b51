// SPDX-License-Identifier: MIT
// A recording on a disk that fills up.
#include "cli/recording.h"

#include "host/pcap_file.h"

#include "full_disk.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

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

    EXPECT_TRUE(anew.canBegin());
    EXPECT_FALSE(QFile::exists(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("mine") == 4);
    file.close();
    EXPECT_TRUE(cli::Recording(path).canBegin());
    EXPECT_EQ(size(), 4);
    EXPECT_FALSE(cli::Recording(folder.path()).canBegin());
}
