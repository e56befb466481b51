// SPDX-License-Identifier: MIT
// Parameters read from and written to stations on a line in memory.
#include "panel/parameters/parameter_restore.h"
#include "service_fixture.h"

#include <gtest/gtest.h>

using namespace dx4;
using namespace dx4::host;
using panel::ParameterBook;

namespace {

constexpr int f105 = 0x105; // address of F 1.5
constexpr int register105 = 0xF105; // its Modbus register

Config oneStation()
{
    Config config;
    config.stations.append(StationConfig());
    return config;
}

struct Desk {
    Desk()
    {
        under.playTime();
        under.plant->stations.registers[{ 1, register105 }] = 5;
        under.start();
        book = std::make_unique<ParameterBook>(panel::parameterPortOf(*under.service), oneStation(),
                                               panel::systemClock());
        restore = std::make_unique<panel::ParameterRestore>(
            *book, [](int) { return panel::Standing::Stands; });
        book->follow(*under.service);
        restore->follow(*under.service);
    }

    void read()
    {
        book->read();
        under.waitFor([&] { return !book->isReading(); });
    }

    ServiceUnderTest under { polling({ { 1, QStringLiteral("SW") } }) };
    std::unique_ptr<ParameterBook> book;
    std::unique_ptr<panel::ParameterRestore> restore;
};

} // namespace

TEST(ParametersOverAService, ADriveIsReadInTheBackground)
{
    Desk desk;

    desk.read();

    EXPECT_TRUE(isComplete(desk.book->side(ParameterBook::Second).set));
    EXPECT_EQ(desk.book->side(ParameterBook::Second).value(f105), 5);
}

TEST(ParametersOverAService, TickedValuesAreWrittenAndReadBack)
{
    Desk desk;
    desk.read();
    ParameterSet file = desk.book->side(ParameterBook::Second).set;
    file.values[f105] = 77;
    desk.book->showFile(ParameterBook::First, QStringLiteral("drive.txt"), file);
    desk.book->tick({ f105 }, true);

    ASSERT_TRUE(desk.restore->begin(desk.restore->plan(), false));
    desk.under.waitFor([&] { return desk.restore->hasEnded() && !desk.book->isReading(); });

    EXPECT_TRUE(desk.restore->isRestored());
    EXPECT_EQ(desk.restore->report().first().toStdString(), "1 compared, 1 written, 1 verified");
    EXPECT_EQ(desk.book->side(ParameterBook::Second).value(f105), 77);
    EXPECT_EQ(desk.book->counts().equal, 203);
}

TEST(ParametersOverAService, AReadingThatIsCancelledKeepsWhatItHas)
{
    Desk desk;
    desk.under.plant->hold();
    desk.under.plant->awaitHeld();
    desk.book->read();
    desk.under.plant->letGo(3);
    desk.under.plant->awaitHeld();

    desk.book->cancel();
    desk.under.plant->release();
    desk.under.waitFor([&] { return !desk.book->isReading(); });

    const ParameterSet &set = desk.book->side(ParameterBook::Second).set;
    EXPECT_GT(set.values.size(), 0);
    EXPECT_LT(set.values.size(), 203);
    EXPECT_TRUE(desk.book->side(ParameterBook::Second).isBrokenOff);
}
