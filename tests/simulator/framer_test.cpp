// SPDX-License-Identifier: MIT
// Where a request ends in a stream of bytes.
#include "simulator/framer.h"

#include <gtest/gtest.h>

using namespace dx4::sim;

namespace {

constexpr Micros gap { 4000 };

std::string taken(Framer &framer, int now)
{
    const std::optional<Bytes> frame = framer.take(Micros(now));
    return frame ? toHex(*frame) : "none";
}

} // namespace

TEST(RequestFrames, AreNoneWhereNothingCame)
{
    Framer framer(gap);

    EXPECT_EQ(taken(framer, 100000), "none");
    EXPECT_EQ(framer.endsAt(), std::nullopt);
}

TEST(RequestFrames, EndWithTheirLastByte)
{
    Framer framer(gap);
    framer.push(fromHex("01 03 20 01 00 01 DE"), Micros(0));
    const std::string before = taken(framer, 10);

    framer.push(fromHex("0A"), Micros(20));

    EXPECT_EQ(before, "none");
    EXPECT_EQ(taken(framer, 20), "01 03 20 01 00 01 DE 0A");
    EXPECT_EQ(framer.endsAt(), std::nullopt);
}

TEST(RequestFrames, LengthOfAWriteFollowsItsByteCount)
{
    Framer framer(gap);
    const Bytes write = withCrc(fromHex("01 10 F0 00 00 02 04 00 01 00 02"));

    framer.push(write, Micros(0));

    EXPECT_EQ(taken(framer, 0), toHex(write));
}

TEST(RequestFrames, TwoInARowAreTwo)
{
    Framer framer(gap);
    framer.push(fromHex("01 03 20 01 00 01 DE 0A 01 03 20 01 00 01 DE 0A"), Micros(0));

    EXPECT_EQ(taken(framer, 0), "01 03 20 01 00 01 DE 0A");
    EXPECT_EQ(taken(framer, 0), "01 03 20 01 00 01 DE 0A");
    EXPECT_EQ(taken(framer, 100000), "none");
}

TEST(RequestFrames, BrokenOneEndsWithAPause)
{
    Framer framer(gap);
    framer.push(fromHex("01 03 20 01 00 01 DE 0B 55"), Micros(100));

    EXPECT_EQ(framer.endsAt(), Micros(4100));
    EXPECT_EQ(taken(framer, 4099), "none");
    EXPECT_EQ(taken(framer, 4100), "01 03 20 01 00 01 DE 0B 55");
}

TEST(RequestFrames, UnknownFunctionEndsWithAPause)
{
    Framer framer(gap);
    const Bytes request = withCrc(fromHex("01 2B 0E 01 00"));
    framer.push(request, Micros(0));

    EXPECT_EQ(taken(framer, 3999), "none");
    EXPECT_EQ(taken(framer, 4000), toHex(request));
}

TEST(RequestFrames, OfEachFunctionWithALengthEndWithTheirLastByte)
{
    for (const char *payload :
         { "01 01 00 00 00 01", "01 02 00 00 00 01", "01 04 00 00 00 01", "01 05 00 00 FF 00",
           "01 06 F0 00 00 01", "01 0F 00 00 00 01 01 01", "01 10 F0 00 00 01 02 00 01" }) {
        SCOPED_TRACE(payload);
        Framer framer(gap);
        const Bytes request = withCrc(fromHex(payload));

        framer.push(request, Micros(0));

        EXPECT_EQ(taken(framer, 0), toHex(request));
    }
}

TEST(RequestFrames, OfFunctionsWithoutALengthEndWithAPause)
{
    for (const char *payload : { "01 00 00 00 00 01", "01 07 00 00 00 01",
                                 "01 0E 00 00 00 01 01 01", "01 11 00 00 00 01 01 01" }) {
        SCOPED_TRACE(payload);
        Framer framer(gap);
        const Bytes request = withCrc(fromHex(payload));

        framer.push(request, Micros(0));

        EXPECT_EQ(taken(framer, 3999), "none");
        EXPECT_EQ(taken(framer, 4000), toHex(request));
    }
}

TEST(RequestFrames, AreNotTakenBeforeTheirEndWhereTheLastOneWasTheSame)
{
    Framer framer(gap);
    framer.push(fromHex("01 03 20 01 00 01 DE 0A"), Micros(0));
    taken(framer, 0);

    framer.push(fromHex("01 03 20 01"), Micros(10));
    const std::string half = taken(framer, 10);
    framer.push(fromHex("00 01 DE 0A"), Micros(20));

    EXPECT_EQ(half, "none");
    EXPECT_EQ(taken(framer, 20), "01 03 20 01 00 01 DE 0A");
}

TEST(RequestFrames, OfSeveralValuesAreNotTakenBeforeTheirEndWhereTheLastOneWasTheSame)
{
    Framer framer(gap);
    const Bytes write = withCrc(fromHex("01 10 F0 00 00 01 02 00 01"));
    framer.push(write, Micros(0));
    taken(framer, 0);

    framer.push(fromHex("01 10 F0 00 00 01 02 00"), Micros(10));

    EXPECT_EQ(taken(framer, 10), "none");
}
