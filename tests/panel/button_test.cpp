// SPDX-License-Identifier: MIT
// Buttons that stop and move machines.
#include "panel/widgets/hold_button.h"
#include "panel/widgets/stop_button.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;
using std::chrono::milliseconds;

namespace {

struct Held {
    Held()
    {
        button.resize(200, 48);
        QObject::connect(&button, &HoldButton::held, [this] { ++count; });
    }

    /// Looks every 100 ms, as its timer does.
    void lookFor(milliseconds span)
    {
        for (milliseconds passed(0); passed < span; passed += milliseconds(100)) {
            now += milliseconds(100);
            button.look();
        }
    }

    dx4::host::Duration now { 0 };
    int count = 0;
    HoldButton button { QStringLiteral("Start"), [this] { return now; } };
};

struct Stopped {
    Stopped()
    {
        button.resize(176, 104);
        QObject::connect(&button, &StopButton::stopWanted, [this] { ++count; });
    }

    int count = 0;
    StopButton button;
};

} // namespace

TEST(HoldButton, ActsWhenItWasHeldForItsTime)
{
    Held held;

    QTest::mousePress(&held.button, Qt::LeftButton);
    held.lookFor(milliseconds(700));
    EXPECT_EQ(held.count, 0);
    EXPECT_DOUBLE_EQ(held.button.progress(), 0.875);

    held.lookFor(milliseconds(100));
    EXPECT_EQ(held.count, 1);

    held.lookFor(milliseconds(2000));
    EXPECT_EQ(held.count, 1);
}

TEST(HoldButton, LetGoOfEarlyDoesNothing)
{
    Held held;

    QTest::mousePress(&held.button, Qt::LeftButton);
    held.lookFor(milliseconds(700));
    QTest::mouseRelease(&held.button, Qt::LeftButton);
    held.lookFor(milliseconds(2000));

    EXPECT_EQ(held.count, 0);
    EXPECT_DOUBLE_EQ(held.button.progress(), 0.0);
}

TEST(HoldButton, AReleaseNeverActsHoweverLateItComes)
{
    Held held;

    QTest::mousePress(&held.button, Qt::LeftButton);
    held.now += milliseconds(5000);
    QTest::mouseRelease(&held.button, Qt::LeftButton);

    EXPECT_EQ(held.count, 0);
}

TEST(HoldButton, ATimeWithoutALookCountsLittle)
{
    Held held;

    QTest::mousePress(&held.button, Qt::LeftButton);
    held.now += milliseconds(5000);
    held.button.look();

    EXPECT_EQ(held.count, 0);
    EXPECT_DOUBLE_EQ(held.button.progress(), 0.25);
}

TEST(HoldButton, AFingerThatLeavesItLetsGo)
{
    Held held;

    QTest::mousePress(&held.button, Qt::LeftButton);
    QMouseEvent move(QEvent::MouseMove, QPointF(300, 100), QPointF(300, 100), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&held.button, &move);
    held.lookFor(milliseconds(2000));

    EXPECT_EQ(held.count, 0);
}

TEST(HoldButton, AHeldKeyActsOnceAndARepeatedOneBeginsNothingAnew)
{
    Held held;

    QTest::keyPress(&held.button, Qt::Key_Space);
    held.lookFor(milliseconds(400));
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(&held.button, &repeat);
    held.lookFor(milliseconds(400));
    EXPECT_EQ(held.count, 1);

    QTest::keyRelease(&held.button, Qt::Key_Space);
    held.lookFor(milliseconds(2000));
    EXPECT_EQ(held.count, 1);
}

TEST(HoldButton, OneThatIsDisabledMeanwhileDoesNotAct)
{
    Held held;

    QTest::mousePress(&held.button, Qt::LeftButton);
    held.button.setEnabled(false);
    held.lookFor(milliseconds(2000));

    EXPECT_EQ(held.count, 0);
}

TEST(StopButton, ActsOnThePressAndNotOnceMoreOnTheRelease)
{
    Stopped stopped;

    QTest::mousePress(&stopped.button, Qt::LeftButton);
    EXPECT_EQ(stopped.count, 1);

    QTest::mouseRelease(&stopped.button, Qt::LeftButton);
    EXPECT_EQ(stopped.count, 1);
}

TEST(StopButton, ActsWhenATouchBegins)
{
    Stopped stopped;
    auto *screen = QTest::createTouchDevice();
    stopped.button.show();

    QTest::touchEvent(&stopped.button, screen).press(0, QPoint(20, 20), &stopped.button);
    EXPECT_EQ(stopped.count, 1);

    QTest::touchEvent(&stopped.button, screen).release(0, QPoint(20, 20), &stopped.button);
    EXPECT_EQ(stopped.count, 1);
}

TEST(StopButton, ActsOnSpaceAndReturn)
{
    Stopped stopped;

    QTest::keyPress(&stopped.button, Qt::Key_Space);
    QTest::keyRelease(&stopped.button, Qt::Key_Space);
    QTest::keyClick(&stopped.button, Qt::Key_Return);

    EXPECT_EQ(stopped.count, 2);
}

TEST(StopButton, HasAWordAndANameForScreenReaders)
{
    const Stopped stopped;

    EXPECT_EQ(stopped.button.text().toStdString(), "Stop");
    EXPECT_EQ(stopped.button.accessibleName().toStdString(), "Stop all drives");
}
