// SPDX-License-Identifier: MIT
// Replies that are not what was asked for, each under its own cause.
#include "host/frames/reply_check.h"

#include "driver_fixture.h"

#include <algorithm>

using namespace dx4::host;

namespace {

QByteArray bytesOf(const std::string &hex)
{
    QByteArray bytes;
    for (unsigned char byte : fromHex(hex))
        bytes.append(static_cast<char>(byte));
    return bytes;
}

QByteArray withGoodCrc(const std::string &hex)
{
    const std::vector<unsigned char> bytes = withCrc(fromHex(hex));
    return bytesOf(toHex(bytes.data(), static_cast<int>(bytes.size())));
}

FRAME_PRO request(const std::string &hex, int replyLength, int dataLength)
{
    FRAME_PRO frame;
    const std::vector<unsigned char> bytes = withCrc(fromHex(hex));
    std::copy(bytes.begin(), bytes.end(), frame.frame);
    frame.sendLength = static_cast<int>(bytes.size());
    frame.replyLength = replyLength;
    frame.replyDataLength = dataLength;
    return frame;
}

FRAME_PRO readOfTwo()
{
    return request("01 03 D0 00 00 02", 9, 4);
}

FRAME_PRO writeOfOne()
{
    return request("01 06 10 02 0B B8", 8, 0);
}

} // namespace

TEST(ReplyCheck, AMatchingReadIsGood)
{
    EXPECT_EQ(checkReply(readOfTwo(), withGoodCrc("01 03 04 00 01 00 02")).cause, ReplyCause::Good);
}

TEST(ReplyCheck, AMatchingEchoIsGood)
{
    EXPECT_EQ(checkReply(writeOfOne(), withGoodCrc("01 06 10 02 0B B8")).cause, ReplyCause::Good);
}

TEST(ReplyCheck, NoByteIsSilence)
{
    EXPECT_EQ(checkReply(readOfTwo(), QByteArray()).cause, ReplyCause::Silence);
}

TEST(ReplyCheck, EveryShorterReplyIsTruncated)
{
    const QByteArray whole = withGoodCrc("01 03 04 00 01 00 02");

    for (int length = 1; length < 9; ++length)
        EXPECT_EQ(checkReply(readOfTwo(), whole.left(length)).cause, ReplyCause::Truncated)
            << length << " bytes";
}

TEST(ReplyCheck, NoSingleFlippedBitIsTakenForGood)
{
    const QByteArray whole = withGoodCrc("01 03 04 00 01 00 02");

    for (int bit = 0; bit < whole.size() * 8; ++bit) {
        QByteArray flipped = whole;
        flipped[bit / 8] = static_cast<char>(flipped.at(bit / 8) ^ (1 << (bit % 8)));
        EXPECT_EQ(checkReply(readOfTwo(), flipped).cause, ReplyCause::BadCrc) << "bit " << bit;
    }
}

TEST(ReplyCheck, AnotherStationsReplyIsForeign)
{
    EXPECT_EQ(checkReply(readOfTwo(), withGoodCrc("02 03 04 00 01 00 02")).cause,
              ReplyCause::ForeignStation);
}

TEST(ReplyCheck, AnotherFunctionIsNamed)
{
    EXPECT_EQ(checkReply(readOfTwo(), withGoodCrc("01 04 04 00 01 00 02")).cause,
              ReplyCause::WrongFunction);
}

TEST(ReplyCheck, AByteCountThatDoesNotFitIsNamed)
{
    EXPECT_EQ(checkReply(readOfTwo(), withGoodCrc("01 03 06 00 01 00 02")).cause,
              ReplyCause::WrongByteCount);
}

TEST(ReplyCheck, TheEchoOfAnotherWriteIsNamed)
{
    const ReplyCause otherAddress =
        checkReply(writeOfOne(), withGoodCrc("01 06 10 01 0B B8")).cause;
    const ReplyCause otherValue = checkReply(writeOfOne(), withGoodCrc("01 06 10 02 0B B9")).cause;

    EXPECT_EQ(otherAddress, ReplyCause::WrongEcho);
    EXPECT_EQ(otherValue, ReplyCause::WrongEcho);
}

TEST(ReplyCheck, AnEchoOfAnotherLengthIsOfAnotherWrite)
{
    EXPECT_EQ(checkReply(writeOfOne(), withGoodCrc("01 06 10 02 0B B8 00")).cause,
              ReplyCause::WrongEcho);
    EXPECT_EQ(checkReply(writeOfOne(), withGoodCrc("01 06 10 02 0B")).cause, ReplyCause::WrongEcho);
}

TEST(ReplyCheck, AnExceptionCarriesItsCode)
{
    const ReplyVerdict read = checkReply(readOfTwo(), withGoodCrc("01 83 02"));
    const ReplyVerdict write = checkReply(writeOfOne(), withGoodCrc("01 86 04"));

    EXPECT_EQ(read.cause, ReplyCause::Exception);
    EXPECT_EQ(read.exceptionCode, 2);
    EXPECT_EQ(write.exceptionCode, 4);
}

TEST(ReplyCheck, RetriesAreOverAfterExceptions1To3Only)
{
    EXPECT_FALSE(checkReply(readOfTwo(), withGoodCrc("01 83 01")).canRetry());
    EXPECT_FALSE(checkReply(readOfTwo(), withGoodCrc("01 83 03")).canRetry());
    EXPECT_TRUE(checkReply(readOfTwo(), withGoodCrc("01 83 04")).canRetry());
    EXPECT_TRUE(checkReply(readOfTwo(), QByteArray()).canRetry());
}
