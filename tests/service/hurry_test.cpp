// SPDX-License-Identifier: MIT
// Somebody who is in a hurry waits for no more than the request that is on the line.
#include "plant.h"
#include "runtime_fixture.h"

#include <algorithm>

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// A runtime over a plant, and a hurry that begins at a moment of the line's clock.
class Hurried {
public:
    explicit Hurried(Duration moment)
        : plant(std::make_shared<Plant>(slowLine()))
        , line(plant)
        , host(privateCopy(), line, settingsFor(moment))
    {
    }

    void runUntil(Duration moment)
    {
        while (line.now() < moment) {
            const Runtime::Step done = host.step();
            if (done == Runtime::Step::Idle || done == Runtime::Step::LineDown)
                plant->stations.line.advance(milliseconds(1));
        }
    }

    /// Requests that began later than the moment.
    int sentAfter(Duration moment) const
    {
        return static_cast<int>(std::count_if(plant->sendTimes.begin(), plant->sendTimes.end(),
                                              [&](Duration sent) { return sent > moment; }));
    }

    std::shared_ptr<Plant> plant;
    PlantLine line;
    Runtime host;

private:
    RuntimeSettings settingsFor(Duration moment)
    {
        RuntimeSettings settings;
        settings.isHurried = [this, moment] { return line.now() >= moment; };
        return settings;
    }
};

/// What makes a step long: other waits than that for a reply.
enum class Wait { LateReplies, ExtraGap, Probe, AdapterEcho };

void prepare(Hurried &hurried, Wait wait)
{
    Plan plan = planOf({ { 1, QStringLiteral("D 0") }, { 1, QStringLiteral("D 8") } });
    if (wait == Wait::Probe) {
        plan = planOf({ { 1, QStringLiteral("D 0") }, { 2, QStringLiteral("D 0") } });
        hurried.plant->stations.dead = { 2 };
    }
    if (wait == Wait::LateReplies)
        hurried.plant->stations.slow[1] = milliseconds(430);
    if (wait == Wait::ExtraGap)
        hurried.host.guard().setExtraGap(1, milliseconds(90));
    if (wait == Wait::AdapterEcho) {
        plan = {};
        hurried.host.write({ 1, QStringLiteral("FRE"), 0, { 5 } });
    }
    hurried.host.setPlan(plan);
}

class Hurry : public ::testing::TestWithParam<Wait> { };

std::string nameOf(const ::testing::TestParamInfo<Wait> &row)
{
    const QVector<const char *> names { "LateReplies", "ExtraGap", "Probe", "AdapterEcho" };
    return names.at(static_cast<int>(row.param));
}

} // namespace

TEST_P(Hurry, SendsNothingMoreAndWaitsForNoMoreThanTheReplyOnTheLine)
{
    const Duration gap = milliseconds(4);
    for (Duration moment = milliseconds(3); moment < seconds(3); moment += milliseconds(31)) {
        Hurried hurried(moment);
        prepare(hurried, GetParam());

        hurried.runUntil(moment);

        // A request of 8 characters of 1 ms, its reply of up to 11, and two late ones before it.
        const std::vector<Duration> &sent = hurried.plant->sendTimes;
        const Duration longest = hurried.host.guard().timeoutOf(1) + milliseconds(8 + 3 * 11);
        const Duration last = sent.empty() ? Duration { 0 } : sent.back() + longest;
        EXPECT_EQ(hurried.sentAfter(moment), 0) << "hurry at " << moment.count() << " us";
        EXPECT_LE(hurried.line.now(), std::max(last, moment + gap)) << moment.count() << " us";
    }
}

INSTANTIATE_TEST_SUITE_P(OfAllWaits, Hurry,
                         ::testing::Values(Wait::LateReplies, Wait::ExtraGap, Wait::Probe,
                                           Wait::AdapterEcho),
                         nameOf);

TEST(HurriedRuntime, LeavesTheStopItsTime)
{
    Hurried hurried(milliseconds(0));
    hurried.host.setStops({ { 1, 0 } });

    const StopReport report = hurried.host.stop(seconds(1));

    EXPECT_EQ(report.text.toStdString(), "all stops confirmed");
    EXPECT_EQ(hurried.plant->stations.registers.at({ 1, 0x1001 }), 0);
}

TEST(HurriedRuntime, ThatIsOverLetsTheRequestGo)
{
    bool isHurried = true;
    auto plant = std::make_shared<Plant>(slowLine());
    PlantLine line(plant);
    RuntimeSettings settings;
    settings.isHurried = [&] { return isHurried; };
    Runtime host(privateCopy(), line, settings);
    host.setPlan(planOf({ { 1, QStringLiteral("D 0") } }));
    host.step();

    isHurried = false;
    const Runtime::Step step = host.step();

    EXPECT_EQ(step, Runtime::Step::Served);
    EXPECT_EQ(plant->sendTimes.size(), 1U);
}
