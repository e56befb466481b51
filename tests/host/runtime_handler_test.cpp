// SPDX-License-Identifier: MIT
// When handlers are called, what they may do, and what becomes of the exceptions that they throw.
#include "host/runtime/runtime_access.h"

#include "runtime_fixture.h"

#include <stdexcept>

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

/// What the call throws; empty when nothing.
template <typename Call> std::string thrownBy(Call call)
{
    try {
        call();
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return {};
}

/// Station 1 polled for D 0 and F 0, and answered once.
class RuntimeHandlers : public ::testing::Test {
protected:
    RuntimeHandlers()
    {
        host.host.setPlan(planOf({ { 1, QStringLiteral("D 0") }, { 1, QStringLiteral("F 0.0") } }));
        host.steps(3); // the adapter is known not to echo
    }

    /// Notes each outcome and throws its id.
    void throwOutcomes()
    {
        host.host.onOutcome([this](const WriteOutcome &outcome) {
            host.outcomes.push_back(std::to_string(outcome.id) + ' ' + writeEndName(outcome.end));
            throw std::runtime_error(std::to_string(outcome.id));
        });
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

TEST_F(RuntimeHandlers, ThatThrowKeepNoOutcomeFromBeingReported)
{
    throwOutcomes();
    host.write(1, "D", 0, { 1 });
    host.write(1, "D", 1, { 1 });
    host.write(1, "CW", 0, { 1 });

    const std::string thrown = thrownBy([this] { host.host.step(); });
    const std::string after = thrownBy([this] { host.host.step(); });

    EXPECT_EQ(thrown, "1000");
    EXPECT_EQ(after, "");
    EXPECT_EQ(host.outcomes, (Texts { "1000 refused", "1001 refused", "1002 confirmed" }));
    EXPECT_EQ(host.host.pendingWrites(), 0);
    EXPECT_EQ(host.host.counters().writes().good, 1U);
}

TEST_F(RuntimeHandlers, OfChangesThatThrowLeaveTheWriteToItsEnd)
{
    Texts changes;
    host.host.onChange([&](const ValueChange &change) {
        changes.push_back(change.name.toStdString());
        throw std::runtime_error(changes.back());
    });
    host.host.write({ 1, QStringLiteral("F"), 0, { 7 }, true, true });

    const std::string written = thrownBy([this] { host.steps(1); });
    const std::string readBack = thrownBy([this] { host.steps(1); });

    EXPECT_EQ(written, "F");
    EXPECT_EQ(readBack, "-1") << "the outcome of a one-off read";
    EXPECT_EQ(changes, (Texts { "F", "-1" }));
    EXPECT_EQ(host.outcomes, Texts { "1000 confirmed" });
    EXPECT_EQ(host.sent(1, 6), 1);
    EXPECT_EQ(host.value(1, "F", 0), 7);
}

TEST_F(RuntimeHandlers, OfChangesThatThrowLeaveTheReplyStoredAndCounted)
{
    host.stations.registers[{ 1, 0xD000 }] = 17;
    host.host.onChange([](const ValueChange &) { throw std::runtime_error("change"); });

    const std::string thrown = thrownBy([this] { host.steps(2); });

    const Value value = host.host.value(1, QStringLiteral("D"), 0);
    EXPECT_EQ(thrown, "change");
    EXPECT_EQ(value.value, 17);
    EXPECT_FALSE(value.stale);
    EXPECT_EQ(host.host.counters().reads().good, 4U);
    EXPECT_EQ(host.host.counters().reads().requests, 4U);
}

TEST_F(RuntimeHandlers, ThatThrowEndARunWithItsStep)
{
    throwOutcomes();
    host.write(1, "CW", 0, { 1 });
    const auto before = host.stations.line.sent().size();

    const std::string thrown = thrownBy([this] { host.host.run([] { return false; }); });

    EXPECT_EQ(thrown, "1000");
    EXPECT_EQ(host.stations.line.sent().size(), before + 1);
}

TEST_F(RuntimeHandlers, ThatThrowKeepNoDriveFromBeingStopped)
{
    throwOutcomes();
    host.host.onAlarm([this](const QString &text) {
        host.alarms.push_back(text.toStdString());
        throw std::runtime_error("alarm");
    });
    host.stations.registers = { { { 1, 0x1001 }, 1 }, { { 2, 0x1001 }, 1 } };
    host.write(1, "FRE", 0, { 100 });

    const std::string thrown = thrownBy([this] { host.host.stop(seconds(5)); });

    EXPECT_EQ(thrown, "1000");
    EXPECT_EQ(host.outcomes, Texts { "1000 refused" });
    EXPECT_EQ(host.alarms, Texts { "all stops confirmed" });
    EXPECT_EQ((host.stations.registers[{ 1, 0x1001 }]), 0);
    EXPECT_EQ((host.stations.registers[{ 2, 0x1001 }]), 4);
}

TEST_F(RuntimeHandlers, OfAnAlarmThatThrowThrowFromTheStep)
{
    RuntimeSettings settings = withStops();
    settings.userPatience = seconds(1);
    RuntimeUnderTest patient(settings);
    patient.host.onAlarm([](const QString &text) { throw std::runtime_error(text.toStdString()); });
    patient.stations.line.advance(seconds(2));

    const std::string thrown = thrownBy([&] { patient.host.step(); });

    EXPECT_EQ(thrown, "the user interface is silent: stopping");
    EXPECT_EQ(patient.sent(1, 6), 1) << "the stop of that very step";
}

TEST_F(RuntimeHandlers, OfOthersThatThrowEndAnAccessWhoseOutcomeIsTheirsThen)
{
    std::vector<int> others;
    RuntimeAccess access(host.host, [&](const WriteOutcome &outcome) {
        others.push_back(outcome.id);
        if (outcome.id == 1000)
            throw std::runtime_error("others");
    });
    host.stations.changes = { silence() };
    host.write(1, "D", 0, { 1 });

    const std::string thrown = thrownBy([&] { access.write(1, QStringLiteral("FRE"), 0, 100); });
    host.steps(1); // the second try
    const AccessResult next = access.write(1, QStringLiteral("D"), 0, 5);

    EXPECT_EQ(thrown, "others");
    EXPECT_EQ(others, (std::vector<int> { 1000, 1001 }));
    EXPECT_EQ(next.kind, AccessResult::Kind::Refused);
}
