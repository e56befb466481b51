// SPDX-License-Identifier: MIT
// A pause that another thread can end.
#include "host/service/doorbell.h"

#include <gtest/gtest.h>

#include <thread>

using dx4::host::Doorbell;
using std::chrono::hours;
using std::chrono::microseconds;

TEST(DoorbellTest, ARingBeforeTheWaitEndsItAtOnce)
{
    Doorbell bell;
    bell.ring();

    EXPECT_TRUE(bell.wait(hours(1)));
}

TEST(DoorbellTest, ARingOfAnotherThreadEndsTheWait)
{
    Doorbell bell;
    std::thread other([&bell] { bell.ring(); });

    const bool hasRung = bell.wait(hours(1));

    other.join();
    EXPECT_TRUE(hasRung);
}

TEST(DoorbellTest, SeveralRingsCountAsOne)
{
    Doorbell bell;
    bell.ring();
    bell.ring();
    bell.wait(hours(1));

    EXPECT_FALSE(bell.wait(microseconds(1)));
}
