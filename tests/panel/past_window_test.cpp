// SPDX-License-Identifier: MIT
// The window on the time around a fault.
#include "golden.h"
#include "past_fixture.h"
#include "widget_walk.h"

#include "panel/past/past_window.h"

#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <set>

using namespace dx4::panel;

namespace {

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

struct Opened {
    explicit Opened(const PastRecord &record = pastFault(), QSize size = { 800, 480 })
        : window(record)
    {
        window.resize(size);
        window.show();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    std::string label(const char *name) const
    {
        return window.findChild<QLabel *>(QLatin1String(name))->text().toStdString();
    }

    void tap(const char *name)
    {
        QTest::mouseClick(window.findChild<QAbstractButton *>(QLatin1String(name)), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    PastWindow window;
};

} // namespace

TEST(PastWindow, OpensAtTheFaultWithItsDrive)
{
    Opened opened;

    EXPECT_EQ(opened.label("past"), "PAST");
    EXPECT_EQ(opened.label("head"), "Conveyor: overvoltage, 2026-03-01 12:00:00");
    EXPECT_EQ(opened.label("when"), "12:00:00, at the fault");
    EXPECT_EQ(opened.label("name"), "Conveyor");
    EXPECT_EQ(opened.label("fault"), "overvoltage");
    EXPECT_EQ(opened.label("frequency"), "49.98");
}

TEST(PastWindow, ShowsEachMomentAsItWas)
{
    Opened opened;

    opened.tap("back half");
    EXPECT_EQ(opened.label("when"), "11:59:59, 0.5 s before the fault");
    EXPECT_EQ(opened.label("fault"), "no fault");

    opened.tap("on 5");
    EXPECT_EQ(opened.label("when"), "12:00:04, 4.5 s after the fault");
    EXPECT_EQ(opened.label("frequency"), "0.00");
    EXPECT_EQ(opened.label("state"), "tripped");

    opened.tap("at fault");
    EXPECT_EQ(opened.window.moment(), faultNoon);
}

TEST(PastWindow, GoesNoFurtherThanTheRecord)
{
    Opened opened;

    opened.window.showMoment(faultNoon - 99'000);
    EXPECT_EQ(opened.window.moment(), faultNoon - 30'000);
    EXPECT_FALSE(opened.window.findChild<QAbstractButton *>(QStringLiteral("back 5"))->isEnabled());

    opened.window.showMoment(faultNoon + 99'000);
    EXPECT_EQ(opened.window.moment(), faultNoon + 5'000);
}

TEST(PastWindow, HasNoCommands)
{
    Opened opened;

    for (const char *name : { "start", "stop this", "change", "stop" }) {
        const auto *button = opened.window.findChild<QAbstractButton *>(QLatin1String(name));
        EXPECT_FALSE(button && button->isVisible()) << name;
    }
}

TEST(PastWindow, SaysThatItIsThePastOnEveryTab)
{
    Opened opened;

    for (const char *tab : { "drives", "frames", "parameters" }) {
        opened.tap(tab);

        EXPECT_TRUE(opened.window.findChild<QLabel *>(QStringLiteral("past"))->isVisible());
    }
}

TEST(PastWindow, WhatWasNotKeptIsSaid)
{
    PastRecord record = pastFault();
    record.frames.reset();
    record.parameters.reset();
    Opened opened(record);

    std::set<std::string> told;
    for (const QLabel *empty : opened.window.findChildren<QLabel *>(QStringLiteral("empty")))
        told.insert(empty->text().toStdString());
    EXPECT_EQ(told,
              (std::set<std::string> { "No journal told which parameters were written.",
                                       "The frames of this time were not kept." }));
}

TEST(PastWindow, IsWholeAtEverySizeAndTab)
{
    for (const QSize &size : { QSize(800, 480), QSize(1280, 800), QSize(1920, 1080) }) {
        Opened opened(pastFault(), size);
        for (const char *tab : { "drives", "frames", "parameters" }) {
            opened.tap(tab);

            EXPECT_EQ(opened.window.size(), size);
            EXPECT_EQ(lines(wrongTargets(opened.window)), "");
            EXPECT_EQ(lines(cutTexts(opened.window)), "");
        }
    }
}

TEST(PastWindow, ARecordWithoutDrivesIsShownAndNothingBreaks)
{
    PastRecord record;
    record.faultAt = record.from = record.to = faultNoon;

    Opened opened(record);

    EXPECT_EQ(opened.label("past"), "PAST");
}

TEST(PastGolden, TheWindowAtTheFault)
{
    Opened opened;

    expectGolden("past", widgetTree(opened.window));
}
