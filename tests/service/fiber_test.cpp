// SPDX-License-Identifier: MIT
// A function with a stack of its own.
#include "host/service/fiber.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

using namespace dx4::host;

namespace {

constexpr std::size_t stackSize = 256 * 1024;

/// What the system has lent this process, whether it is used or not.
long mappedPages()
{
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages;
}

/// Uses so many kilobytes of stack, and of no other memory that a sanitizer might give instead.
[[gnu::noinline, gnu::no_sanitize_address]] int useStack(int kilobytes)
{
    volatile char used[1024];
    for (volatile char &byte : used)
        byte = 1;
    return kilobytes > 1 ? useStack(kilobytes - 1) + used[0] : used[0];
}

} // namespace

TEST(FiberTest, RunsInStretches)
{
    std::string steps;
    Fiber *self = nullptr;
    Fiber fiber(
        [&] {
            steps += "a";
            self->suspend();
            steps += "b";
        },
        stackSize);
    self = &fiber;

    fiber.resume();
    steps += "-";
    const bool hadEnded = fiber.hasEnded();
    fiber.resume();

    EXPECT_EQ(steps, "a-b");
    EXPECT_FALSE(hadEnded);
    EXPECT_TRUE(fiber.hasEnded());
}

TEST(FiberTest, KnowsWhetherItIsRunning)
{
    Fiber *self = nullptr;
    bool within = false;
    Fiber fiber([&] { within = self->isRunning(); }, stackSize);
    self = &fiber;
    const bool before = fiber.isRunning();

    fiber.resume();

    EXPECT_FALSE(before);
    EXPECT_TRUE(within);
    EXPECT_FALSE(fiber.isRunning());
}

TEST(FiberTest, WhatTheFunctionThrowsLeavesThroughTheOwner)
{
    Fiber fiber([] { throw std::runtime_error("too deep"); }, stackSize);

    std::string thrown;
    try {
        fiber.resume();
    } catch (const std::runtime_error &error) {
        thrown = error.what();
    }

    EXPECT_EQ(thrown, "too deep");
    EXPECT_TRUE(fiber.hasEnded());
    EXPECT_FALSE(fiber.isRunning());
}

TEST(FiberTest, ThatIsLeftInItsMidstIsUnwound)
{
    const auto held = std::make_shared<int>(7);
    {
        Fiber *self = nullptr;
        Fiber fiber(
            [&self, copy = held] {
                const auto another = copy;
                self->suspend();
                FAIL() << "it goes on";
            },
            stackSize);
        self = &fiber;
        fiber.resume();
        EXPECT_EQ(held.use_count(), 3);
    }

    EXPECT_EQ(held.use_count(), 1);
}

TEST(FiberTest, ThatSwallowsItsUnwindingIsUnwoundAgain)
{
    int tries = 0;
    {
        Fiber *self = nullptr;
        Fiber fiber(
            [&] {
                for (; tries < 3; ++tries) {
                    try {
                        self->suspend();
                    } catch (...) {
                        continue;
                    }
                }
                throw std::runtime_error("nobody hears");
            },
            stackSize);
        self = &fiber;
        fiber.resume();
    }

    EXPECT_EQ(tries, 3);
}

TEST(FiberTest, GivesItsStackBackWithItsEnd)
{
    constexpr std::size_t large = 64 * 1024 * 1024;
    const long before = mappedPages();

    for (int i = 0; i < 8; ++i) {
        Fiber fiber([] {}, large);
        fiber.resume();
    }

    EXPECT_LT(mappedPages() - before, static_cast<long>(large) / getpagesize());
}

TEST(FiberTest, ThatWasNeverResumedRunsNothing)
{
    const auto held = std::make_shared<int>(7);
    bool hasRun = false;

    {
        const Fiber fiber([&hasRun, held] { hasRun = true; }, stackSize);
    }

    EXPECT_FALSE(hasRun);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(FiberTest, ExceptionsOfBothSidesDoNotMix)
{
    Fiber *self = nullptr;
    std::vector<std::string> caught;
    const auto throwAndCatch = [&](const char *text) {
        try {
            throw std::runtime_error(text);
        } catch (const std::runtime_error &error) {
            caught.emplace_back(error.what());
        }
    };
    Fiber fiber(
        [&] {
            throwAndCatch("fiber, first stretch");
            self->suspend();
            throwAndCatch("fiber, second stretch");
        },
        stackSize);
    self = &fiber;

    try {
        fiber.resume();
        throw std::runtime_error("owner");
    } catch (const std::runtime_error &) {
        fiber.resume(); // as in an event loop that somebody turns while handling an exception
        try {
            throw;
        } catch (const std::runtime_error &error) {
            caught.emplace_back(error.what());
        }
    }

    EXPECT_EQ(
        caught,
        (std::vector<std::string> { "fiber, first stretch", "fiber, second stretch", "owner" }));
}

TEST(FiberTest, TellsHowMuchOfItsStackWasUsed)
{
    Fiber *self = nullptr;
    Fiber fiber(
        [&] {
            self->suspend();
            useStack(100);
            self->suspend();
        },
        stackSize);
    self = &fiber;

    fiber.resume();
    const std::size_t little = fiber.deepest();
    fiber.resume();
    const std::size_t much = fiber.deepest();
    fiber.resume();

    EXPECT_GT(little, 0U);
    EXPECT_LT(little, 16U * 1024);
    EXPECT_GE(much, 100U * 1024);
    EXPECT_LT(much, stackSize);
    EXPECT_EQ(fiber.deepest(), 0U);
}

TEST(FiberDeathTest, AStackThatOverflowsEndsTheProgram)
{
    EXPECT_DEATH(
        {
            Fiber fiber([] { useStack(300); }, stackSize);
            fiber.resume();
        },
        "");
}
