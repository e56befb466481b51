// SPDX-License-Identifier: MIT
// Frames of the line, taken apart and explained.
#include "cli/registers/frame_text.h"

#include <gtest/gtest.h>

using namespace dx4::cli;

namespace {

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

TEST(FrameText, ReadRequestNamesRegisterAndCount)
{
    const FrameText text = explainFrame(bytes("0103D00000047CC9"));

    EXPECT_EQ(text.kind, QStringLiteral("read request"));
    EXPECT_EQ(text.firstRegister, 0xD000);
    EXPECT_EQ(text.count, 4);
    EXPECT_TRUE(text.crcIsRight);
}

TEST(FrameText, EveryByteBelongsToAField)
{
    for (const char *frame : { "0103D00000047CC9", "018302C0F1", "0110F80200020400140 00F11B2",
                               "01030411223344556677", "0107AA" }) {
        int count = 0;
        for (const FrameField &field : explainFrame(bytes(frame)).fields)
            count += static_cast<int>(field.bytes.size());

        EXPECT_EQ(count, bytes(frame).size()) << frame;
    }
}

TEST(FrameText, AFrameCutAnywhereKeepsItsBytes)
{
    for (const char *whole : { "0103D00000047CC9", "01030411223344556677", "018302C0F1",
                               "0106200000014384", "0110F802000204001400F11B2A" }) {
        for (int length = 0; length <= bytes(whole).size(); ++length) {
            const QByteArray frame = bytes(whole).left(length);
            QByteArray told;
            for (const FrameField &field : explainFrame(frame).fields)
                told += field.bytes;

            EXPECT_EQ(told, frame) << whole << " cut to " << length;
        }
    }
}

TEST(FrameText, FourBytesOfAReadReplyAreAnUnknownFrame)
{
    EXPECT_EQ(explainFrame(bytes("7B030001")).kind, QStringLiteral("unknown frame"));
}

TEST(FrameText, WrongCrcIsTold)
{
    const FrameText text = explainFrame(bytes("0103D00000047CC8"));

    EXPECT_FALSE(text.crcIsRight);
    EXPECT_EQ(text.fields.constLast().meaning, QStringLiteral("wrong; 7C C9 would be right"));
}

TEST(FrameText, ValuesOfAReplyAreNamedByItsRequest)
{
    const FrameText text = explainFrame(bytes("0103020011"
                                              "7848"),
                                        0x2000);

    EXPECT_EQ(text.values, QVector<quint16> { 17 });
    EXPECT_EQ(text.fields.at(3).meaning, QStringLiteral("SW 0 (0x2000) = 17 (0x0011)"));
}

TEST(FrameText, RegisterThatTheDriveDoesNotHaveKeepsItsNumber)
{
    EXPECT_EQ(registerText(0x1234), QStringLiteral("0x1234"));
    EXPECT_EQ(registerText(0xFC0D), QStringLiteral("F c.13 (0xFC0D)"));
}

TEST(FrameText, BytesMayBeWrittenInSeveralWays)
{
    QString error;

    EXPECT_EQ(parseBytes({ QStringLiteral("01 03") }, &error), bytes("0103"));
    EXPECT_EQ(parseBytes({ QStringLiteral("0103"), QStringLiteral("D0") }, &error),
              bytes("0103D0"));
    EXPECT_EQ(parseBytes({ QStringLiteral("0x01,0x3") }, &error), bytes("0103"));
    EXPECT_FALSE(parseBytes({ QStringLiteral("01"), QStringLiteral("zz") }, &error));
    EXPECT_EQ(error,
              QStringLiteral("\"zz\" is no byte; write two hexadecimal digits per byte, such as 01 "
                             "03 D0 00"));
}

TEST(FrameText, AWordThatOnlyLooksLikeBytesIsNone)
{
    for (const char *word : { "", "0x", "0x0x1", "+1", "-1", "012", "1 2 x" }) {
        QString error;

        EXPECT_FALSE(parseBytes({ QString::fromLatin1(word) }, &error)) << word;
        EXPECT_NE(error, QString()) << word;
    }
}
