// SPDX-License-Identifier: MIT
// The window: what is in reach of a finger, and what is asked before it closes.
#include "panel_fixture.h"
#include "widget_walk.h"

#include "panel/app/closing_sheet.h"
#include "panel/widgets/look.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

QAbstractButton *button(PanelWindow &window, const char *text)
{
    for (QAbstractButton *found : window.findChildren<QAbstractButton *>()) {
        if (found->isVisible() && found->text() == QLatin1String(text))
            return found;
    }
    return nullptr;
}

void hold(MadeUpPanel &panel, const char *text)
{
    auto *held = static_cast<HoldButton *>(button(panel.window, text));
    QTest::mousePress(held, Qt::LeftButton);
    for (int i = 0; i < 8; ++i) {
        panel.made.advance(milliseconds(100));
        held->look();
    }
    QTest::mouseRelease(held, Qt::LeftButton);
}

StopReport report(const QVector<int> &unconfirmed)
{
    StopReport report;
    report.unconfirmed = unconfirmed;
    return report;
}

class EmptyPage : public Page {
public:
    void refresh() override { }
    void setScale(double) override { }
};

class EverySize : public ::testing::TestWithParam<int> {
protected:
    /// 1 to 32 drives on the smallest screen and on a large one.
    static QSize sizeOf(bool isSmall) { return isSmall ? QSize(800, 480) : QSize(1920, 1080); }
};

} // namespace

TEST_P(EverySize, EveryTargetIsLargeEnoughAndApart)
{
    for (const bool isSmall : { true, false }) {
        MadeUpPanel panel(GetParam(), sizeOf(isSmall));
        panel.made.readRunning(1);
        panel.show();

        EXPECT_EQ(lines(wrongTargets(panel.window)), "");
    }
}

TEST_P(EverySize, TheStopIsInItsCornerAndCoveredByNothing)
{
    for (const bool isSmall : { true, false }) {
        MadeUpPanel panel(GetParam(), sizeOf(isSmall));

        EXPECT_EQ(lines(wrongStop(panel.window)), "");
    }
}

TEST_P(EverySize, NoTextIsCut)
{
    for (const bool isSmall : { true, false }) {
        MadeUpPanel panel(GetParam(), sizeOf(isSmall));
        panel.made.readRunning(1);
        panel.show();

        EXPECT_EQ(lines(cutTexts(panel.window)), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Window, EverySize, ::testing::Values(1, 2, 3, 4, 32));

TEST(Window, TheFrequencyIsDrawnIn96Pixels)
{
    MadeUpPanel panel;

    const auto *frequency = panel.window.findChild<QLabel *>(QStringLiteral("frequency"));

    EXPECT_EQ(frequency->font().pixelSize(), 96);
}

TEST(Window, TheSmallestScreenIsLargeEnough)
{
    MadeUpPanel panel(32);

    EXPECT_EQ(panel.window.size(), QSize(800, 480));
}

TEST(Window, AStopIsSentByThePressAndByEscape)
{
    MadeUpPanel panel;

    QTest::mousePress(button(panel.window, "Stop"), Qt::LeftButton);
    EXPECT_EQ(panel.made.stops, 1);

    panel.window.activateWindow();
    QApplication::setActiveWindow(&panel.window);
    QTest::keyClick(&panel.window, Qt::Key_Escape);
    EXPECT_EQ(panel.made.stops, 2);
}

TEST(Window, AStartIsHeldAndItsWayIsShown)
{
    MadeUpPanel panel;
    panel.made.readStanding(1);
    panel.show();

    QTest::mouseClick(button(panel.window, "Hold to start"), Qt::LeftButton);
    EXPECT_EQ(panel.made.writes.size(), 0U);

    hold(panel, "Hold to start");
    panel.show();
    EXPECT_EQ(panel.made.writes.size(), 1U);
    EXPECT_EQ(
        panel.window.findChild<QLabel *>(QStringLiteral("way"))->accessibleName().toStdString(),
        "Start: on its way, no echo yet");
}

TEST(Window, AFrequencyIsTypedAndHeld)
{
    MadeUpPanel panel;
    panel.made.readStanding(1);
    panel.show();

    QTest::mouseClick(button(panel.window, "Frequency..."), Qt::LeftButton);
    QTest::mouseClick(button(panel.window, "4"), Qt::LeftButton);
    QTest::mouseClick(button(panel.window, "5"), Qt::LeftButton);
    hold(panel, "Hold to set");

    ASSERT_EQ(panel.made.writes.size(), 1U);
    EXPECT_EQ(panel.made.writes[0].values, QVector<quint16> { 4500 });
}

TEST(Window, ACommandGoesToTheDriveThatIsShown)
{
    MadeUpPanel panel;
    panel.made.readStanding(2);
    panel.show();

    QTest::mouseClick(panel.window.findChild<DriveCard *>(QStringLiteral("card 1")),
                      Qt::LeftButton);
    hold(panel, "Hold to start");

    ASSERT_EQ(panel.made.writes.size(), 1U);
    EXPECT_EQ(panel.made.writes[0].station, 2);
}

TEST(Window, ASheetLeavesTheStopInReach)
{
    MadeUpPanel panel;
    panel.made.readStanding(1);
    panel.show();

    QTest::mouseClick(button(panel.window, "Frequency..."), Qt::LeftButton);

    EXPECT_EQ(lines(wrongStop(panel.window)), "");
    EXPECT_EQ(lines(wrongTargets(panel.window)), "");
    EXPECT_EQ(lines(cutTexts(panel.window)), "");
    EXPECT_FALSE(panel.window.findChild<DriveView *>()->isEnabled());
}

TEST(Window, ClosesAtOnceWhereEveryMotorStands)
{
    MadeUpPanel panel;
    panel.made.readStanding(1);
    panel.show();

    EXPECT_TRUE(panel.window.close());
    EXPECT_EQ(panel.made.stops, 0);
}

TEST(Window, AsksBeforeItClosesWhileAMotorRunsAndWaitsForTheEcho)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.show();

    EXPECT_FALSE(panel.window.close());
    EXPECT_EQ(lines(wrongStop(panel.window)), "");
    EXPECT_EQ(lines(wrongTargets(panel.window)), "");

    QTest::mouseClick(button(panel.window, "Stop and close"), Qt::LeftButton);
    EXPECT_EQ(panel.made.stops, 1);
    EXPECT_TRUE(panel.window.isVisible());

    panel.line.noteStopEnded(1, report({}));
    EXPECT_FALSE(panel.window.isVisible());
}

TEST(Window, AQuestionStaysOnTopWhenAnotherPageIsOpened)
{
    MadeUpPanel panel;
    auto *other = new EmptyPage;
    panel.window.addPage(other, QStringLiteral("Other"));
    QCoreApplication::processEvents();
    panel.made.readRunning(1);
    panel.show();
    panel.window.close();

    QTest::mouseClick(button(panel.window, "Other"), Qt::LeftButton);

    auto *stay = button(panel.window, "Stay");
    EXPECT_EQ(panel.window.childAt(stay->mapTo(&panel.window, stay->rect().center())), stay);
    EXPECT_FALSE(other->isEnabled());
}

TEST(Window, WhatIsAskedNamesTheDrive)
{
    MadeUpPanel panel;
    panel.made.readRunning(2);
    panel.show();

    QTest::mouseClick(panel.window.findChild<DriveCard *>(QStringLiteral("card 1")),
                      Qt::LeftButton);
    QTest::mouseClick(button(panel.window, "Frequency..."), Qt::LeftButton);
    EXPECT_EQ(panel.window.findChild<NumberPad *>()->accessibleName().toStdString(),
              "Cooling fan: set frequency");

    panel.window.close();
    EXPECT_EQ(panel.window.findChild<QLabel *>(QStringLiteral("question"))->text().toStdString(),
              "May be running: Cooling fan. Drives are stopped before the panel closes.");
}

TEST(Window, AWidePageShowsManyDrivesInColumns)
{
    MadeUpPanel few(3, { 1920, 1080 });
    MadeUpPanel many(32, { 1920, 1080 });

    EXPECT_EQ(few.window.findChild<DriveList *>()->width(), 464);
    EXPECT_EQ(many.window.findChild<DriveList *>()->width(), 704);
}

TEST(Window, TextsAndTargetsGrowWithTheWindow)
{
    MadeUpPanel panel(3, { 1600, 960 });

    EXPECT_EQ(button(panel.window, "Drives")->font().pixelSize(), 32);
    EXPECT_EQ(button(panel.window, "Drives")->height(), 96);
    EXPECT_EQ(button(panel.window, "Hold to start")->height(), 96);
    EXPECT_EQ(button(panel.window, "Stop")->font().pixelSize(), 72);
}

TEST(Window, StaysWhereTheStopIsNotConfirmedUntilSomebodyInsists)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.show();
    panel.window.close();

    QTest::mouseClick(button(panel.window, "Stop and close"), Qt::LeftButton);
    panel.line.noteStopEnded(1, report({ 1 }));
    EXPECT_TRUE(panel.window.isVisible());
    EXPECT_EQ(lines(wrongTargets(panel.window)), "");

    hold(panel, "Hold to close without a stop");
    EXPECT_FALSE(panel.window.isVisible());
}

TEST(Window, WhoStaysIsNotClosedByAStopThatEndsLater)
{
    MadeUpPanel panel;
    panel.made.readRunning(1);
    panel.show();
    panel.window.close();

    QTest::mouseClick(button(panel.window, "Stop and close"), Qt::LeftButton);
    QTest::mouseClick(button(panel.window, "Stay"), Qt::LeftButton);
    panel.line.noteStopEnded(1, report({}));

    EXPECT_TRUE(panel.window.isVisible());
    EXPECT_TRUE(panel.window.findChild<DriveView *>()->isEnabled());
}

TEST(Window, LooksSeldomerWhenNobodyTouchesItForAMinute)
{
    MadeUpPanel panel;
    EXPECT_EQ(panel.window.interval(), 100);

    panel.made.advance(seconds(60));
    EXPECT_EQ(panel.window.interval(), 500);

    QTest::mousePress(button(panel.window, "Drives"), Qt::LeftButton);
    EXPECT_EQ(panel.window.interval(), 100);
}

TEST(Window, EveryButtonHasANameForScreenReaders)
{
    MadeUpPanel panel(32);

    for (const QAbstractButton *found : panel.window.findChildren<QAbstractButton *>())
        EXPECT_FALSE(found->text().isEmpty() && found->accessibleName().isEmpty());
}
