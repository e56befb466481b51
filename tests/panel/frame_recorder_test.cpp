// SPDX-License-Identifier: MIT
// A recording from the window: asked before it replaces, told when the disk is full.
#include "panel/lineview/frame_recorder.h"

#include "host/recording/pcap_file.h"

#include "full_disk.h"
#include "host_bytes.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Stage = FrameRecorder::Stage;

namespace {

class FrameRecorderTest : public ::testing::Test {
protected:
    void pass(int count = 1)
    {
        for (int i = 0; i < count; ++i)
            tap->add({ { seconds(1), true, frameOf("01 03 D0 00 00 01") } }, seconds(1000));
    }

    /// Records what passes until it is called.
    FrameRecorder::State ended()
    {
        recorder.end();
        recorder.join();
        return recorder.state();
    }

    void fill(const QByteArray &content) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray content() const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("line.pcap"));
    std::shared_ptr<FrameTap> tap = std::make_shared<FrameTap>();
    FrameRecorder recorder { tap };
};

} // namespace

TEST_F(FrameRecorderTest, WhatPassesFromTheBeginningOnIsInTheFile)
{
    pass(5);

    recorder.begin(path, false);
    pass(3);
    const FrameRecorder::State state = ended();

    QString error;
    const auto frames = readPcap(path, &error);
    ASSERT_TRUE(frames) << error.toStdString();
    EXPECT_EQ(frames->size(), 3);
    EXPECT_EQ(state.stage, Stage::Ended);
    EXPECT_EQ(state.frames, 3U);
    EXPECT_EQ(state.error.toStdString(), "");
}

TEST_F(FrameRecorderTest, AFileThatIsThereIsNotReplacedUnasked)
{
    fill("the notes of last week");

    recorder.begin(path, false);
    recorder.join();

    EXPECT_EQ(recorder.state().stage, Stage::Exists);
    EXPECT_EQ(recorder.state().file, path);
    EXPECT_EQ(content(), "the notes of last week");
}

TEST_F(FrameRecorderTest, AnOlderRecordingIsNotReplacedUnasked)
{
    QString error;
    ASSERT_TRUE(writePcap(path, { { seconds(1), true, "abc" } }, {}, &error));
    const QByteArray before = content();

    recorder.begin(path, false);
    recorder.join();

    EXPECT_EQ(recorder.state().stage, Stage::Exists);
    EXPECT_EQ(content(), before);
}

TEST_F(FrameRecorderTest, AFileThatMayBeReplacedIs)
{
    fill("the notes of last week");

    recorder.begin(path, true);
    pass();
    const FrameRecorder::State state = ended();

    EXPECT_EQ(state.stage, Stage::Ended);
    EXPECT_EQ(readPcap(path, nullptr)->size(), 1);
}

TEST_F(FrameRecorderTest, AFullDiskIsToldAndLeavesAFileThatCanBeRead)
{
    const FullDisk disk(200);

    recorder.begin(path, false);
    pass(50);
    const FrameRecorder::State state = ended();

    EXPECT_EQ(state.stage, Stage::Failed);
    EXPECT_EQ(state.error.toStdString(), path.toStdString() + ": File too large");
    EXPECT_LT(state.frames, 50U);
    EXPECT_EQ(readPcap(path, nullptr)->size(), static_cast<int>(state.frames));
}

TEST_F(FrameRecorderTest, AFolderThatIsNotThereIsTold)
{
    recorder.begin(folder.filePath(QStringLiteral("none/line.pcap")), false);
    recorder.join();

    EXPECT_EQ(recorder.state().stage, Stage::Failed);
    EXPECT_NE(recorder.state().error.toStdString(), "");
    EXPECT_FALSE(recorder.isBusy());
}

TEST_F(FrameRecorderTest, ASecondBeginningChangesNothing)
{
    recorder.begin(path, false);
    recorder.begin(folder.filePath(QStringLiteral("other.pcap")), false);
    const FrameRecorder::State state = ended();

    EXPECT_EQ(state.file, path);
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("other.pcap"))));
}

TEST_F(FrameRecorderTest, ItRecordsAgainAfterAnEnd)
{
    recorder.begin(path, false);
    ended();

    recorder.begin(folder.filePath(QStringLiteral("other.pcap")), false);
    pass(2);
    const FrameRecorder::State state = ended();

    EXPECT_EQ(state.stage, Stage::Ended);
    EXPECT_EQ(state.frames, 2U);
}

TEST_F(FrameRecorderTest, ADeskThatIsLeftEndsItsRecording)
{
    {
        FrameRecorder left(tap);
        left.begin(path, false);
        pass();
    }

    EXPECT_EQ(readPcap(path, nullptr)->size(), 1);
}
