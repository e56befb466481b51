// SPDX-License-Identifier: MIT
// The demonstration as it is: window, line, driver and the simulator, in their own time.
#include "panel/app/panel_window.h"
#include "panel/app/plant.h"
#include "panel/widgets/hold_button.h"
#include "panel_fixture.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;

namespace {

constexpr int patience = 30'000; // ms, for what comes at once on a free machine

Options demoOptions()
{
    Options options;
    options.demo = true;
    options.driver = QStringLiteral(DRIVER_FILE);
    options.simulator = QStringLiteral(SIMULATOR_FILE);
    return options;
}

struct Demo {
    Demo()
        : line(portOf(*plant->service), plant->running.config,
               wordsOf(plant->running.config, plant->running.control), systemClock())
        , window(line, systemClock().steady)
    {
        line.follow(*plant->service);
        window.resize(800, 480);
        window.show();
        window.start();
    }

    /// Lets the window live until this is so.
    template <typename Condition> bool waitFor(Condition isSo)
    {
        return QTest::qWaitFor(isSo, patience);
    }

    QWidget *widget(const char *name) { return window.findChild<QWidget *>(QLatin1String(name)); }

    dx4::cli::Failure failure;
    std::optional<Plant> plant = makePlant(demoOptions(), &failure);
    PanelLine line;
    PanelWindow window;
};

} // namespace

TEST(PanelDemo, AHeldStartTurnsTheMotorAndTheStopStopsIt)
{
    Demo demo;
    ASSERT_TRUE(
        demo.waitFor([&] { return demo.line.drive(0).frequency.trust == Shown::Trust::Fresh; }));

    QTest::mousePress(demo.widget("start"), Qt::LeftButton);
    ASSERT_TRUE(demo.waitFor([&] {
        return demo.line.drive(0).way == QLatin1String("Start: done, the drive reports it");
    }));
    QTest::mouseRelease(demo.widget("start"), Qt::LeftButton);
    EXPECT_TRUE(demo.waitFor([&] { return demo.line.drive(0).frequency.quantity > 1.0; }));
    EXPECT_EQ(demo.line.mayRun(), QVector<int> { 1 });

    QTest::mousePress(demo.widget("stop"), Qt::LeftButton);
    QTest::mouseRelease(demo.widget("stop"), Qt::LeftButton);
    EXPECT_TRUE(demo.waitFor(
        [&] { return demo.line.message() == QLatin1String("Stop: confirmed by all drives"); }));
    EXPECT_TRUE(demo.waitFor([&] { return demo.line.mayRun().isEmpty(); }));
    EXPECT_TRUE(demo.window.close());
}

// DX4_PICTURES names a folder; for eyes, and not a part of any run.
TEST(PanelDemo, DISABLED_IsGrabbed)
{
    Demo demo;
    ASSERT_TRUE(
        demo.waitFor([&] { return demo.line.drive(0).frequency.trust == Shown::Trust::Fresh; }));
    demo.line.start(0);
    ASSERT_TRUE(demo.waitFor([&] { return demo.line.drive(0).frequency.quantity > 20.0; }));

    EXPECT_TRUE(demo.window.grab().save(qEnvironmentVariable("DX4_PICTURES")
                                        + QStringLiteral("/demo.png")));

    demo.line.stopAll();
    EXPECT_TRUE(demo.waitFor([&] { return !demo.line.isStopping(); }));
}
