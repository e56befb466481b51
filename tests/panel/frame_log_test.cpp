// SPDX-License-Identifier: MIT
// Frames in words: what is bad is marked, and kept.
#include "made_up_view.h"

#include "host_bytes.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

using Texts = std::vector<std::string>;

QString written(const FrameLine &line)
{
    return (line.isBad ? QStringLiteral("! ") : QString())
        + (line.isRequest ? QStringLiteral("> ") : QStringLiteral("< ")) + line.words;
}

class FrameLogTest : public ::testing::Test {
protected:
    void request(const char *hex) { pass(true, frameOf(hex)); }
    void reply(const char *hex) { pass(false, frameOf(hex)); }

    void pass(bool isRequest, const QByteArray &bytes)
    {
        now += milliseconds(20);
        TappedFrames taken;
        taken.frames.append({ now, isRequest, bytes });
        taken.wallClockOffset = seconds(1000);
        log.take(taken);
    }

    Texts texts(const FrameFilter &filter = {}) const
    {
        Texts texts;
        for (const FrameLine &line : log.lines(filter))
            texts.push_back(written(line).toStdString());
        return texts;
    }

    Duration now { 0 };
    FrameLog log { LineSettings() };
};

} // namespace

TEST_F(FrameLogTest, ARequestAndItsReplyAreToldInWords)
{
    request("01 03 D0 00 00 02");
    reply("01 03 04 00 05 00 07");

    EXPECT_EQ(texts(),
              (Texts { "> station 1, read request, D 0 (0xD000), 2 registers",
                       "< station 1, read reply, D 0 (0xD000) = 5, 7" }));
}

TEST_F(FrameLogTest, ASilenceIsToldWithTheNextRequest)
{
    request("01 03 D0 00 00 01");
    request("02 03 D0 00 00 01");

    EXPECT_EQ(
        texts(),
        (Texts { "> station 1, read request, D 0 (0xD000), 1 register", "! < station 1, no reply",
                 "> station 2, read request, D 0 (0xD000), 1 register" }));
}

TEST_F(FrameLogTest, ABroadcastHasNoReply)
{
    request("00 06 10 01 00 00");
    request("02 03 D0 00 00 01");

    EXPECT_EQ(texts({ 0, true }), Texts());
}

TEST_F(FrameLogTest, ARefusalIsBad)
{
    request("01 03 D0 00 00 01");
    reply("01 83 02");

    EXPECT_EQ(texts({ 0, true }),
              (Texts { "> station 1, read request, D 0 (0xD000), 1 register",
                       "! < station 1, exception, 2, register not there" }));
}

TEST_F(FrameLogTest, AWrongCrcIsBad)
{
    request("01 03 D0 00 00 01");
    pass(false, bytesOf("01 03 02 00 05 00 00"));

    EXPECT_EQ(texts({ 0, true }).back(), "! < station 1, read reply, D 0 (0xD000) = 5, wrong CRC");
}

TEST_F(FrameLogTest, AReplyThatIsCutShortIsBad)
{
    request("01 03 D0 00 00 01");
    pass(false, bytesOf("01 03"));

    EXPECT_EQ(texts({ 0, true }).back(), "! < no frame, the reply is cut short");
}

TEST_F(FrameLogTest, TheReplyOfAnotherStationIsBad)
{
    request("01 03 D0 00 00 01");
    reply("02 03 02 00 05");

    EXPECT_EQ(texts({ 0, true }).back(),
              "! < station 2, read reply, D 0 (0xD000) = 5, another station replied");
    EXPECT_EQ(texts({ 1, true }).size(), 2U) << "it was station 1 that was asked";
}

TEST_F(FrameLogTest, ASecondReplyBelongsToNoRequest)
{
    request("01 03 D0 00 00 01");
    reply("01 03 02 00 05");
    reply("01 03 02 00 06");

    EXPECT_EQ(texts({ 0, true }), Texts { "! < station 1, read reply, 6, belongs to no request" });
}

TEST_F(FrameLogTest, TheEchoOfAnAdapterIsNoFailure)
{
    request("01 03 D0 00 00 01");
    pass(false, frameOf("01 03 D0 00 00 01") + frameOf("01 03 02 00 05"));

    EXPECT_EQ(texts().back(), "< station 1, read reply, D 0 (0xD000) = 5");
}

TEST_F(FrameLogTest, AReplyTellsItsTurnaround)
{
    request("01 03 D0 00 00 01");
    reply("01 03 02 00 05");

    const FrameLine line = log.lines({}).constLast();

    // 15 characters of 10 bits at 9600 bit/s take 15.625 ms of the 20.
    EXPECT_EQ(line.turnaround, std::chrono::microseconds(4375));
    EXPECT_EQ(line.time, seconds(1000) + milliseconds(40));
}

TEST_F(FrameLogTest, OneStationCanBeLookedAtAlone)
{
    request("01 03 D0 00 00 01");
    reply("01 03 02 00 05");
    request("02 03 D0 00 00 01");

    EXPECT_EQ(texts({ 2, false }), Texts { "> station 2, read request, D 0 (0xD000), 1 register" });
}

TEST_F(FrameLogTest, TheNewestAreKept)
{
    for (int i = 0; i < 400; ++i) {
        request("01 03 D0 00 00 01");
        reply("01 03 02 00 05");
    }

    EXPECT_EQ(log.lines({}).size(), 500);
}

TEST_F(FrameLogTest, AnErrorIsKeptAmongManyGoodFrames)
{
    request("01 03 D0 00 00 01");
    reply("01 83 02");
    for (int i = 0; i < 400; ++i) {
        request("01 03 D0 00 00 01");
        reply("01 03 02 00 05");
    }

    EXPECT_EQ(texts({ 0, true }).size(), 2U);
}

TEST_F(FrameLogTest, OfManyAtOnceTheOldestArePassedOver)
{
    TappedFrames taken;
    for (int i = 0; i < 501; ++i)
        taken.frames.append({ milliseconds(i), true, frameOf("00 06 10 01 00 00") });

    log.take(taken);

    EXPECT_EQ(log.missed(), 1U);
    EXPECT_EQ(log.lines({}).size(), 500);
}

TEST_F(FrameLogTest, WhereFramesAreMissingNoSilenceIsTold)
{
    request("01 03 D0 00 00 01");
    TappedFrames taken;
    taken.missed = 7;
    taken.frames.append({ milliseconds(60), true, frameOf("02 03 D0 00 00 01") });

    log.take(taken);

    EXPECT_EQ(texts({ 0, true }), Texts());
    EXPECT_EQ(log.missed(), 7U);
}

TEST(FrameModel, HoldsWhatAModelPromises)
{
    FrameModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    FrameLine line;
    line.words = QStringLiteral("station 1, no reply");
    line.isRequest = false;
    line.isBad = true;
    line.turnaround = std::chrono::microseconds(4375);

    model.setLines({ line, line });

    EXPECT_EQ(model.index(1, FrameModel::WordsColumn).data().toString().toStdString(),
              "< station 1, no reply");
    EXPECT_EQ(model.index(1, FrameModel::TurnaroundColumn).data().toString().toStdString(),
              "4.4 ms");
    EXPECT_TRUE(model.index(1, FrameModel::WordsColumn).data(IsBadRole).toBool());
}
