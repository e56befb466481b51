// SPDX-License-Identifier: MIT
// When handlers are called, and what they may do.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

RuntimeSettings withStops()
{
    RuntimeSettings settings;
    settings.stops = { { 1, 0 }, { 2, 4 } };
    return settings;
}

/// Station 1 polled for D 0 and F 0, and answered once.
class RuntimeHandlers : public ::testing::Test {
protected:
    RuntimeHandlers()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 1, QStringLiteral("F 0.0") } }));
        host.steps(2);
    }

    RuntimeUnderTest host { withStops() };
};

} // namespace

TEST_F(RuntimeHandlers, KnowTheIdOfAWriteThatIsRefusedAtOnce)
{
    int id = 0;
    std::vector<int> reported;
    host.host.onOutcome([&](const WriteOutcome &outcome) { reported = { id, outcome.id }; });

    id = host.write(1, "D", 0, { 1 });
    const auto before = reported;
    const int pending = host.host.pendingWrites();
    host.host.step();

    EXPECT_EQ(before, std::vector<int> {});
    EXPECT_EQ(pending, 1);
    EXPECT_EQ(reported, (std::vector<int> { 1000, 1000 }));
    EXPECT_EQ(host.host.pendingWrites(), 0);
}

TEST_F(RuntimeHandlers, HearOfAReplacedWriteOnceTheNewerOneHasItsId)
{
    host.write(1, "FRE", 0, { 100 });
    host.write(1, "FRE", 0, { 200 });
    const Texts before = host.outcomes;

    host.host.step();

    EXPECT_EQ(before, Texts {});
    EXPECT_EQ(host.outcomes, (Texts { "1000 replaced", "1001 confirmed" }));
}

TEST_F(RuntimeHandlers, HearOfRefusalsWhileTheLineIsDown)
{
    host.stations.line.unplug();
    host.host.step();
    host.write(1, "FRE", 0, { 100 });

    const Runtime::Step done = host.host.step();

    EXPECT_EQ(done, Runtime::Step::LineDown);
    EXPECT_EQ(host.outcomes, Texts { "1000 refused" });
}

TEST_F(RuntimeHandlers, AreToldByAStopWhatWasRefusedBeforeIt)
{
    host.write(1, "D", 0, { 1 });

    host.host.stop(seconds(1));

    EXPECT_EQ(host.outcomes, Texts { "1000 refused" });
}

TEST_F(RuntimeHandlers, OfWhoWaitsForARefusalAreCalledWithoutAPause)
{
    host.stations.line.unplug();
    host.host.step();
    const Duration before = host.stations.line.now();
    host.write(1, "FRE", 0, { 100 });

    host.host.run([this] { return !host.outcomes.empty(); });

    EXPECT_EQ(host.stations.line.now(), before);
}

TEST_F(RuntimeHandlers, ThatAnswerEachRefusalByAnotherWriteKeepNoStepFromEnding)
{
    int reports = 0;
    host.host.onOutcome([&](const WriteOutcome &) {
        ++reports;
        host.write(1, "D", 0, { 1 });
    });
    host.stations.line.unplug();
    host.write(1, "D", 0, { 1 });

    host.host.step();
    const int ofOneStep = reports;
    host.runFor(seconds(1)); // the clock goes on in pauses alone

    EXPECT_EQ(ofOneStep, 2) << "at its beginning and at its end";
    EXPECT_LE(reports, 100);
}

TEST_F(RuntimeHandlers, MayWriteAgainFromAnOutcome)
{
    host.host.onOutcome([this](const WriteOutcome &outcome) {
        host.outcomes.push_back(std::to_string(outcome.id) + ' ' + writeEndName(outcome.end));
        if (outcome.id == 1000)
            host.write(1, "CW", 0, { 1 });
    });
    host.write(1, "FRE", 0, { 100 });

    host.steps(2);

    EXPECT_EQ(host.outcomes, (Texts { "1000 confirmed", "1001 confirmed" }));
}
