// SPDX-License-Identifier: MIT
// The words for exception codes.
#include "wire/exception_name.h"

#include <gtest/gtest.h>

TEST(ExceptionName, IsWhatModbusMeansByTheCode)
{
    EXPECT_STREQ(dx4::exceptionName(1), "function not known");
    EXPECT_STREQ(dx4::exceptionName(2), "register not there");
    EXPECT_STREQ(dx4::exceptionName(3), "value not allowed");
    EXPECT_STREQ(dx4::exceptionName(4), "device failed");
    EXPECT_STREQ(dx4::exceptionName(5), "accepted, takes a while");
    EXPECT_STREQ(dx4::exceptionName(6), "device busy");
}

TEST(ExceptionName, OfOtherCodesSaysThatTheyAreTheDevicesOwn)
{
    for (const int code : { -1, 0, 7, 255 })
        EXPECT_STREQ(dx4::exceptionName(code), "a code of the device's own") << code;
}
