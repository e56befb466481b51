// SPDX-License-Identifier: MIT
// The registers that somebody looks at, and what is told of them.
#include "host/service/register_table.h"

#include "host/config/config.h"
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

class RegisterTableTest : public ::testing::Test {
protected:
    RegisterTableTest() { polls({ { 1, QStringLiteral("D 0-1") } }); }

    void polls(const QVector<PlanEntry> &entries)
    {
        const Plan plan = planOf(entries);
        host.host.setPlan(plan);
        table.setPlan(plan);
    }

    /// "station type address=value name" of each; without a value what is not known.
    static Texts texts(const QVector<RegisterValue> &values)
    {
        Texts result;
        for (const RegisterValue &value : values)
            result.push_back(std::to_string(value.station) + ' ' + value.regType.toStdString() + ' '
                             + std::to_string(value.address) + '=' + value.text().toStdString()
                             + (value.name.isEmpty() ? "" : ' ' + value.name.toStdString()));
        return result;
    }

    Texts refreshed() { return texts(table.refresh(host.host, host.stations.line.now())); }
    Texts all() const { return texts(table.all(host.stations.line.now())); }

    RuntimeUnderTest host;
    RegisterTable table;
};

} // namespace

TEST_F(RegisterTableTest, TellsEachRegisterOnceAndThenWhatIsNew)
{
    EXPECT_EQ(refreshed(), (Texts { "1 D 0=-", "1 D 1=-" }));
    host.stations.registers[{ 1, 0xD001 }] = 7;
    host.steps(3);
    EXPECT_EQ(refreshed(), Texts {}) << "nobody said that something happened";

    table.touch(2);
    EXPECT_EQ(refreshed(), Texts {}) << "to another station";
    table.touch(1);
    EXPECT_EQ(refreshed(), (Texts { "1 D 0=0", "1 D 1=7" }));
    table.touch(1);
    EXPECT_EQ(refreshed(), Texts {}) << "nothing but the age is new";
    host.stations.registers[{ 1, 0xD001 }] = 8;
    host.steps(2);
    table.touchAll();
    EXPECT_EQ(refreshed(), Texts { "1 D 1=8" });
    EXPECT_EQ(all(), (Texts { "1 D 0=0", "1 D 1=8" }));

    host.stations.registers[{ 1, 0xD001 }] = 9;
    host.steps(2);
    EXPECT_EQ(refreshed(), Texts {}) << "a touch counts once";
}

TEST_F(RegisterTableTest, QualityIsNewsAsAValueIs)
{
    host.steps(3);
    refreshed();
    host.stations.dead = { 1 };

    host.runFor(std::chrono::seconds(5));
    table.touchAll();
    const QVector<RegisterValue> told = table.refresh(host.host, host.stations.line.now());

    EXPECT_EQ(texts(told), (Texts { "1 D 0=0", "1 D 1=0" }));
    EXPECT_TRUE(told.at(0).state.stale);
}

TEST_F(RegisterTableTest, AnAgeGoesOnBetweenTwoLooks)
{
    host.steps(3);
    host.stations.line.advance(milliseconds(100));
    table.touchAll();
    table.refresh(host.host, host.stations.line.now());
    EXPECT_EQ(table.all(host.stations.line.now()).at(0).state.age, milliseconds(100));

    host.stations.line.advance(milliseconds(250));

    EXPECT_EQ(table.all(host.stations.line.now()).at(0).state.age, milliseconds(350));
}

TEST_F(RegisterTableTest, WhatWasNeverReadHasNoAge)
{
    refreshed();
    host.stations.line.advance(milliseconds(250));

    EXPECT_EQ(table.all(host.stations.line.now()).at(0).state.age, Duration(0));
}

TEST_F(RegisterTableTest, ShowsWhatIsAddedBesidesWhatIsPolled)
{
    refreshed();

    table.add(2, QStringLiteral("F"), 3, 2);

    EXPECT_EQ(table.stations(), (std::set<int> { 1, 2 }));
    EXPECT_EQ(refreshed(), (Texts { "2 F 3=-", "2 F 4=-" }));
    EXPECT_EQ(all(), (Texts { "1 D 0=-", "1 D 1=-", "2 F 3=-", "2 F 4=-" }));
}

TEST_F(RegisterTableTest, WhatIsAddedAgainIsLookedAtAgain)
{
    table.add(1, QStringLiteral("FRE"), 0, 1);
    refreshed();
    host.write(1, "FRE", 0, { 50 });
    host.steps(1);

    table.add(1, QStringLiteral("FRE"), 0, 1);

    EXPECT_EQ(refreshed(), Texts { "1 FRE 0=50" });
}

TEST_F(RegisterTableTest, AnotherPlanKeepsWhatIsKnownOfTheRest)
{
    host.steps(3);
    table.touchAll();
    refreshed();
    table.add(1, QStringLiteral("F"), 3, 1);

    polls({ { 1, QStringLiteral("D 1-2") } });

    EXPECT_EQ(all(), (Texts { "1 D 1=0", "1 D 2=-", "1 F 3=-" }));
    EXPECT_EQ(refreshed(), (Texts { "1 D 2=-", "1 F 3=-" }));
}

TEST_F(RegisterTableTest, LabelsAreThoseOfTheNewestConfiguration)
{
    const auto former = parseConfig("[[station]]\naddress = 1\n"
                                    "register = [ { at = \"D 1\", name = \"old\" } ]\n",
                                    nullptr);
    const auto config = parseConfig("[[station]]\naddress = 1\nregister = [\n"
                                    "{ at = \"D 0-1\", unit = \"V\" },\n"
                                    "{ at = \"D 3\", name = \"none\" },\n"
                                    "{ at = \"D 40\", name = \"beyond\" } ]\n",
                                    nullptr);
    ASSERT_TRUE(former && config);
    table.setLabels(*former, host.host.link());
    EXPECT_EQ(refreshed(), (Texts { "1 D 0=-", "1 D 1=- old" }));
    host.steps(3);

    table.setLabels(*config, host.host.link());

    EXPECT_EQ(refreshed(), (Texts { "1 D 0=0 V", "1 D 1=0 V" }));
}
