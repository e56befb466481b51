// SPDX-License-Identifier: MIT
// A walk over all that can be touched: whatever was done, the stop is there, and no motor starts of
// which nobody has held the start.
#include "panel_fixture.h"
#include "widget_walk.h"

#include "panel/widgets/hold_button.h"

#include <QTest>

#include <gtest/gtest.h>

#include <random>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::milliseconds;

namespace {

constexpr int plainSteps = 2'000;
constexpr int holdSteps = 8; // looks of a hold button that make it act

class Walker {
public:
    explicit Walker(unsigned seed)
        : m_random(seed)
    {
        begin();
    }

    /// One random step.
    ///
    /// @return what was wrong then, and what was done; empty: nothing
    QString step()
    {
        if (!m_panel->window.isVisible())
            begin();
        const std::size_t writesBefore = m_panel->made.writes.size();
        m_wasHeld = false;
        const QString done = act();
        if (!m_panel->window.isVisible())
            return {};
        QStringList wrong = wrongStop(m_panel->window);
        if (m_panel->made.writes.size() > writesBefore && !m_wasHeld)
            wrong.append(QStringLiteral("a write that nobody held for"));
        return wrong.isEmpty() ? QString()
                               : done + QStringLiteral(": ") + wrong.join(QLatin1Char(';'));
    }

private:
    int any(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }

    void begin()
    {
        const QSize sizes[] = { { 800, 480 }, { 1024, 600 }, { 1280, 800 }, { 1920, 1080 } };
        m_panel = std::make_unique<MadeUpPanel>(1 + any(32), sizes[any(4)]);
        m_settled = m_panel->made.nextWrite;
        m_panel->show();
    }

    QString act()
    {
        switch (any(10)) {
        case 0:
        case 1:
        case 2:
            return touch(0);
        case 3:
        case 4:
            return touch(1 + any(2 * holdSteps));
        case 5:
            return key();
        case 6:
            return read();
        case 7:
            return settle();
        case 8:
            m_panel->made.advance(milliseconds(any(40'000)));
            m_panel->window.refresh();
            return QStringLiteral("time");
        default:
            m_panel->window.close();
            return QStringLiteral("close");
        }
    }

    /// Holds a target for so many looks of its clock; 0: a tap.
    QString touch(int looks)
    {
        QVector<QAbstractButton *> targets;
        for (QAbstractButton *button : m_panel->window.findChildren<QAbstractButton *>()) {
            if (button->isVisible() && button->isEnabled())
                targets.append(button);
        }
        QAbstractButton *target = targets.at(any(static_cast<int>(targets.size())));
        QTest::mousePress(target, Qt::LeftButton);
        hold(target, looks);
        QTest::mouseRelease(target, Qt::LeftButton);
        m_panel->window.refresh();
        return QStringLiteral("%1 held for %2").arg(target->text()).arg(looks);
    }

    void hold(QWidget *target, int looks)
    {
        auto *button = qobject_cast<HoldButton *>(target);
        for (int i = 0; i < looks; ++i) {
            m_panel->made.advance(milliseconds(100));
            m_wasHeld = m_wasHeld || (button && i + 1 >= holdSteps);
            if (button)
                button->look();
        }
    }

    QString key()
    {
        const Qt::Key keys[] = { Qt::Key_Tab, Qt::Key_Space,     Qt::Key_Return, Qt::Key_Escape,
                                 Qt::Key_4,   Qt::Key_Backspace, Qt::Key_Down,   Qt::Key_Period };
        const Qt::Key key = keys[any(8)];
        QWidget *focus = m_panel->window.focusWidget();
        QWidget *target = focus ? focus : &m_panel->window;
        QTest::keyPress(target, key);
        hold(target, any(2 * holdSteps));
        QTest::keyRelease(target, key);
        return QStringLiteral("key %1").arg(key);
    }

    QString read()
    {
        const int station = 1 + any(m_panel->line.driveCount());
        if (any(2) == 0)
            m_panel->made.readRunning(station);
        else
            m_panel->made.readStanding(station);
        m_panel->made.read(station, "FU", 0, static_cast<quint16>(any(4)));
        m_panel->made.next.isOpen = any(8) != 0;
        m_panel->made.next.downReason = QStringLiteral("the adapter was pulled");
        m_panel->show();
        return QStringLiteral("values");
    }

    /// Ends what was asked for, well or badly.
    QString settle()
    {
        const WriteEnd ends[] = { WriteEnd::Confirmed, WriteEnd::Rejected, WriteEnd::TimedOut };
        for (; m_settled < m_panel->made.nextWrite; ++m_settled)
            m_panel->line.noteWriteEnded(ended(m_settled, ends[any(3)]));
        StopReport report;
        if (any(2) == 0)
            report.unconfirmed.append(1);
        m_panel->line.noteStopEnded(m_panel->made.stops, report);
        return QStringLiteral("outcomes");
    }

    std::mt19937 m_random;
    std::unique_ptr<MadeUpPanel> m_panel;
    bool m_wasHeld = false;
    int m_settled = 0; // id of the first write that has not ended
};

int steps()
{
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("KORVANE_WALK_STEPS", &isNumber);
    return isNumber ? wanted : plainSteps;
}

unsigned seed()
{
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("KORVANE_SEED", &isNumber);
    return isNumber ? static_cast<unsigned>(wanted) : 1U;
}

} // namespace

TEST(RandomWalk, LeavesTheStopInReachAndStartsNothingByItself)
{
    Walker walker(seed());

    for (int i = 0; i < steps(); ++i) {
        const QString wrong = walker.step();
        ASSERT_EQ(wrong.toStdString(), "") << "seed " << seed() << ", step " << i;
    }
}
