// SPDX-License-Identifier: MIT
// How often an access is queued again, and when it is given up as stuck.
#include "host/exchange/cycle_access.h"
#include "host/line/memory_line.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace dx4::host;
using Step = Cycle::Step;

namespace {

/// An access whose steps the test plays, the same one over and over at the end.
class PlayedAccess : public CycleAccess {
public:
    PlayedAccess(Link &link, const Cycle &cycle, std::function<Step()> step)
        : CycleAccess(link, cycle, std::move(step), {})
    {
    }
};

/// Notes at each step which tags wait in the driver.
class CycleAccessTest : public ::testing::Test {
protected:
    /// @param steps         what each step is; the last one stands for all that follow
    /// @param emptiesLists  the driver lets go of what waits
    AccessResult read(const std::vector<Step> &steps, bool emptiesLists)
    {
        PlayedAccess access(link, cycle, [&] { return play(steps, emptiesLists); });
        return access.read(1, QStringLiteral("F"), 0x0105, 1);
    }

    Step play(const std::vector<Step> &steps, bool emptiesLists)
    {
        korvane_dx4 &driver = *link.api().state;
        for (const VARIABLE &request : driver.conditionList)
            tags.push_back(request.varKind);
        for (const VARIABLE &request : driver.writeList)
            tags.push_back(request.varKind);
        if (emptiesLists) {
            driver.conditionList.clear();
            driver.writeList.clear();
        }
        return steps.at(std::min(played++, steps.size() - 1));
    }

    Link link { Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy),
                LinkSettings() };
    MemoryLine line { [](const QByteArray &) { return MemoryLine::Answer {}; } };
    LineExchange exchange { line };
    Cycle cycle { link, exchange };
    std::vector<int> tags;
    std::size_t played = 0;
};

} // namespace

TEST_F(CycleAccessTest, AReadThatIsLostEachTimeIsAskedFor513TimesUnderTagsOfItsOwn)
{
    const AccessResult result = read({ Step::Retry }, true);

    EXPECT_EQ(result.kind, AccessResult::Kind::NoAnswer);
    EXPECT_EQ(result.reason.toStdString(), "station 1, F 1.5 (0xF105): dropped");
    EXPECT_EQ(played, 513U);
    ASSERT_EQ(tags.size(), 513U);
    EXPECT_EQ(tags.front(), -1);
    EXPECT_EQ(tags.back(), -513);
}

TEST_F(CycleAccessTest, AReadThatIsNotSentInTwoIdleStepsIsStuck)
{
    const AccessResult result = read({ Step::Idle }, false);

    EXPECT_EQ(result.reason.toStdString(), "station 1, F 1.5 (0xF105): dropped");
    EXPECT_EQ(played, 2U);
}

TEST_F(CycleAccessTest, IdleStepsCountInARow)
{
    read({ Step::Idle, Step::Retry, Step::Idle }, false);

    EXPECT_EQ(played, 4U);
}

TEST_F(CycleAccessTest, AWriteThatIsLostIsNotWrittenAgain)
{
    PlayedAccess access(link, cycle, [&] { return play({ Step::Retry }, true); });

    const AccessResult first = access.write(1, QStringLiteral("F"), 0x0105, 5);
    access.write(1, QStringLiteral("F"), 0x0105, 6);

    EXPECT_EQ(first.kind, AccessResult::Kind::NoAnswer);
    EXPECT_EQ(first.reason.toStdString(), "station 1, F 1.5 (0xF105): dropped");
    EXPECT_EQ(tags, (std::vector<int> { -1, -2 }));
}
