// SPDX-License-Identifier: MIT
// The page of the alarms, and the banner above every page.
#include "alarm_fixture.h"
#include "widget_walk.h"

#include "panel/alarms/event_save_sheet.h"
#include "panel/alarms/filter_sheet.h"
#include "panel/alarms/text_sheet.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::journal;
using std::chrono::seconds;

namespace {

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

QAbstractButton *button(AlarmPanel &under, const char *text)
{
    for (QAbstractButton *found : under.panel.window.findChildren<QAbstractButton *>()) {
        if (found->isVisible() && found->text() == QLatin1String(text))
            return found;
    }
    return nullptr;
}

void tap(AlarmPanel &under, const char *text)
{
    QAbstractButton *found = button(under, text);
    ASSERT_NE(found, nullptr) << text;
    QTest::mouseClick(found, Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

/// Headings of the rows that are shown.
std::vector<std::string> rows(AlarmPanel &under)
{
    std::vector<std::string> texts;
    for (const RowButton *row : under.page->findChildren<RowButton *>()) {
        if (row->isVisible())
            texts.push_back(row->text().toStdString());
    }
    return texts;
}

QAbstractButton *row(AlarmPanel &under, int place)
{
    for (RowButton *found : under.page->findChildren<RowButton *>()) {
        if (found->isVisible() && found->objectName() == QStringLiteral("row %1").arg(place))
            return found;
    }
    return nullptr;
}

BannerButton *banner(AlarmPanel &under)
{
    return under.banner->findChild<BannerButton *>();
}

void expectWhole(AlarmPanel &under)
{
    EXPECT_EQ(lines(wrongTargets(under.panel.window)), "");
    EXPECT_EQ(lines(wrongStop(under.panel.window)), "");
    EXPECT_EQ(lines(cutTexts(under.panel.window)), "");
}

std::string label(AlarmPanel &under, const char *name)
{
    return under.page->findChild<QLabel *>(QLatin1String(name))->text().toStdString();
}

const QSize sizes[] = { { 800, 480 }, { 1280, 800 }, { 1920, 1080 } };

} // namespace

TEST(AlarmBanner, TakesNoRoomWhereAllIsWell)
{
    AlarmPanel under;
    under.panel.made.readStanding(1);
    under.show();

    EXPECT_FALSE(under.banner->isVisible());
}

TEST(AlarmBanner, TellsTheOldestThatNobodyHasAcknowledgedOnEveryPage)
{
    AlarmPanel under;
    under.raiseSome();

    EXPECT_TRUE(under.banner->isVisible());
    EXPECT_EQ(banner(under)->text().toStdString(), "Feed pump does not answer");
    EXPECT_EQ(banner(under)->accessibleName().toStdString(),
              "Alarm, not acknowledged: Feed pump does not answer, 12:05:15. 2 more");

    under.openAlarms();
    EXPECT_TRUE(under.banner->isVisible());
}

TEST(AlarmBanner, SaysWhereAnAlarmIsOver)
{
    AlarmPanel under;
    under.raiseSome();

    under.watch.acknowledge({ { AlarmKind::Station, 1, 0, {} } });
    under.show();

    EXPECT_EQ(banner(under)->text().toStdString(), "Cooling fan: overcurrent (over)");
}

TEST(AlarmBanner, ATapLeadsToTheAlarms)
{
    AlarmPanel under;
    under.raiseSome();

    QTest::mouseClick(banner(under), Qt::LeftButton);

    EXPECT_TRUE(under.page->isVisible());
    EXPECT_TRUE(button(under, "Alarms")->isChecked());
    EXPECT_FALSE(button(under, "Drives")->isChecked());
}

TEST(AlarmBanner, LeavesEveryPageWholeAtEverySize)
{
    for (const QSize &size : sizes) {
        AlarmPanel under(size);
        under.raiseSome();
        EXPECT_EQ(under.panel.window.size(), size);
        expectWhole(under);
        under.openAlarms();
        expectWhole(under);
    }
}

TEST(AlarmBanner, StandsAboveThePageAndCoversNothingOfIt)
{
    AlarmPanel under;
    under.raiseSome();

    const auto *frequency = under.panel.window.findChild<QLabel *>(QStringLiteral("frequency"));
    const int top = frequency->mapTo(&under.panel.window, QPoint(0, 0)).y();

    EXPECT_EQ(under.banner->geometry().top(), 0);
    EXPECT_GE(top, under.banner->geometry().bottom());
}

TEST(AlarmBanner, ADriveWithLittleRoomLeavesOutValuesAndCutsNone)
{
    MadeUpLine made;
    made.readRunning(1);
    made.publish();
    PanelLine line(made.port(), made.config, wordsOf(made.config), made.clock());
    line.look();
    QWidget window;
    window.resize(800, 480);
    auto *inner = new DriveView(made.clock().steady, &window);
    DriveView &view = *inner;
    window.show();
    view.show(line.drive(0));

    for (const int height : { 350, 300, 290, 310, 350 }) {
        view.resize(536, height);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);

        EXPECT_EQ(lines(cutTexts(view)), "") << height;
        EXPECT_EQ(lines(wrongTargets(view)), "") << height;
        EXPECT_EQ(view.height(), height);
    }
}

TEST(AlarmsPage, ListsWhatIsUnacknowledgedFirst)
{
    AlarmPanel under;
    under.raiseSome();
    under.openAlarms();

    EXPECT_EQ(rows(under),
              (std::vector<std::string> { "Feed pump does not answer", "Cooling fan: overcurrent",
                                          "the user interface is silent: stopping",
                                          "Conveyor: overvoltage" }));
    EXPECT_EQ(label(under, "head"), "3 not acknowledged, 2 active");
}

TEST(AlarmsPage, ARowIsChosenAndAcknowledged)
{
    AlarmPanel under;
    under.raiseSome();
    under.openAlarms();
    EXPECT_FALSE(button(under, "Acknowledge")->isEnabled());
    under.noted.clear();

    QTest::mouseClick(row(under, 0), Qt::LeftButton);
    tap(under, "Acknowledge");

    ASSERT_EQ(under.noted.size(), 1U);
    EXPECT_EQ(under.noted[0].text.toStdString(), "acknowledged by anna: station 1 does not answer");
    EXPECT_EQ(label(under, "head"), "2 not acknowledged, 2 active");
    EXPECT_FALSE(button(under, "Acknowledge")->isEnabled());
}

TEST(AlarmsPage, AllThatAreShownAreAcknowledgedAtOnce)
{
    AlarmPanel under;
    under.raiseSome();
    under.openAlarms();
    under.noted.clear();

    tap(under, "Acknowledge all shown");
    under.show();

    EXPECT_EQ(under.noted.size(), 3U);
    EXPECT_EQ(label(under, "head"), "0 not acknowledged, 2 active");
    EXPECT_FALSE(button(under, "Acknowledge all shown")->isEnabled());
    EXPECT_FALSE(under.banner->isVisible());
}

TEST(AlarmsPage, WhatIsNotShownIsNotAcknowledged)
{
    AlarmPanel under;
    for (int i = 0; i < 12; ++i)
        under.watch.noteAlarm(QStringLiteral("message %1").arg(i));
    under.show();
    under.openAlarms();
    const auto shown = rows(under).size();

    tap(under, "Acknowledge all shown");

    EXPECT_EQ(under.noted.size(), shown);
    EXPECT_EQ(under.watch.book().unacknowledged(), 12 - static_cast<int>(shown));
}

TEST(AlarmsPage, ALongListIsTurnedPageByPage)
{
    AlarmPanel under;
    for (int i = 0; i < 12; ++i)
        under.watch.noteAlarm(QStringLiteral("message %1").arg(i, 2, 10, QLatin1Char('0')));
    under.show();
    under.openAlarms();
    EXPECT_EQ(rows(under).front(), "message 00");
    EXPECT_FALSE(button(under, "Up")->isEnabled());

    tap(under, "Down");
    EXPECT_EQ(rows(under).front(), "message 04");
    expectWhole(under);

    tap(under, "Down");
    EXPECT_EQ(rows(under).front(), "message 08");
    EXPECT_FALSE(button(under, "Down")->isEnabled());
}

TEST(AlarmsPage, AChosenRowStaysChosenWhenOthersCome)
{
    AlarmPanel under;
    under.raiseSome();
    under.openAlarms();
    QTest::mouseClick(row(under, 3), Qt::LeftButton);

    under.watch.noteLine(true, QStringLiteral("unplugged"));
    under.page->refresh();
    tap(under, "Details...");

    EXPECT_EQ(label(under, "details text"),
              "Conveyor: overvoltage (fault code 2, station 3)\n2026-03-01 12:00:00, active, "
              "acknowledged");
    expectWhole(under);
}

TEST(AlarmsPage, TheHistoryIsReadWhenItIsAskedFor)
{
    AlarmPanel under;
    under.openAlarms();
    EXPECT_TRUE(under.asked.empty());

    tap(under, "History");
    EXPECT_EQ(label(under, "empty"), "No alarm is active, and all were acknowledged.");
    ASSERT_EQ(under.asked.size(), 1U);
    under.giveHistory(8);

    EXPECT_EQ(rows(under).front(), "station 3: fault 2, overvoltage; status word 0x0008: tripped");
    expectWhole(under);
}

TEST(AlarmsPage, AHistoryThatCannotBeReadSaysWhy)
{
    AlarmPanel under;
    under.openAlarms();
    tap(under, "History");

    under.answer({ {}, QStringLiteral("the file is damaged") });

    const auto labels = under.page->findChildren<QLabel *>(QStringLiteral("empty"));
    EXPECT_EQ(labels.last()->text().toStdString(),
              "The journal cannot be read: the file is damaged");
}

TEST(AlarmsPage, WithoutAJournalTheHistorySaysSo)
{
    AlarmPanel under({ 800, 480 }, false);
    under.openAlarms();

    tap(under, "History");

    const auto labels = under.page->findChildren<QLabel *>(QStringLiteral("empty"));
    EXPECT_EQ(labels.last()->text().toStdString(), "No journal is kept.");
    EXPECT_FALSE(button(under, "Filter...")->isEnabled());
    EXPECT_FALSE(button(under, "Save as CSV...")->isEnabled());
}

TEST(AlarmsPage, TheHistoryIsFilteredByKindTimeDriveAndText)
{
    AlarmPanel under;
    under.openAlarms();
    tap(under, "History");
    under.giveHistory(8);

    tap(under, "Filter...");
    expectWhole(under);
    tap(under, "Faults");
    tap(under, "Last 24 h");
    tap(under, "Next");
    under.page->findChild<FilterSheet *>()->findChild<QLineEdit *>()->setText(
        QStringLiteral("volt"));
    tap(under, "Show these");

    const EventQuery &query = under.asked.back();
    EXPECT_EQ(query.kinds, QVector<EventKind> { EventKind::Fault });
    EXPECT_EQ(query.window.from, panelNoon - 86'400'000);
    EXPECT_EQ(query.station, 1);
    EXPECT_EQ(query.contains, QStringLiteral("volt"));
    EXPECT_EQ(label(under, "head"), "Newest first: Faults, Last 24 h, Feed pump, \"volt\"");
}

TEST(AlarmsPage, AFilterThatIsGivenUpChangesNothing)
{
    AlarmPanel under;
    under.openAlarms();
    tap(under, "History");

    tap(under, "Filter...");
    tap(under, "Faults");
    tap(under, "Cancel");

    EXPECT_EQ(under.asked.size(), 1U);
}

TEST(AlarmsPage, AFileIsReplacedOnlyAfterItWasAskedFor)
{
    AlarmPanel under;
    under.openAlarms();
    tap(under, "History");
    under.giveHistory(8);
    tap(under, "Save as CSV...");
    under.page->findChild<EventSaveSheet *>()->findChild<QLineEdit *>()->setText(
        QStringLiteral("/tmp/history.csv"));
    expectWhole(under);

    tap(under, "Save");
    EXPECT_EQ(under.savedAs.back(), QStringLiteral("/tmp/history.csv"));
    EXPECT_FALSE(under.mayReplace);
    under.saved({ SaveEnd::Kind::IsThere, {} });
    EXPECT_EQ(label(under, "save text"),
              "/tmp/history.csv is there already. Replace it, or choose another name.");

    tap(under, "Replace the file");
    EXPECT_TRUE(under.mayReplace);
    under.saved({});
    EXPECT_EQ(label(under, "save text"), "Saved as /tmp/history.csv");
    expectWhole(under);
}

TEST(AlarmsPage, AnotherNameIsNotReplacedByTheAgreementToTheFirst)
{
    AlarmPanel under;
    under.openAlarms();
    tap(under, "History");
    tap(under, "Save as CSV...");
    tap(under, "Save");
    under.saved({ SaveEnd::Kind::IsThere, {} });

    auto *file = under.page->findChild<EventSaveSheet *>()->findChild<QLineEdit *>();
    QTest::keyClicks(file, QStringLiteral("2"));
    tap(under, "Save");

    EXPECT_FALSE(under.mayReplace);
}

TEST(AlarmsPage, ASaveThatFailsSaysWhy)
{
    AlarmPanel under;
    under.openAlarms();
    tap(under, "History");
    tap(under, "Save as CSV...");

    tap(under, "Save");
    under.saved({ SaveEnd::Kind::Failed, QStringLiteral("No space left on device") });

    EXPECT_EQ(label(under, "save text"), "Not saved: No space left on device");
    EXPECT_TRUE(button(under, "Save")->isEnabled());
}

TEST(AlarmsPage, IsWholeAtEverySizeInEveryState)
{
    for (const QSize &size : sizes) {
        AlarmPanel under(size);
        under.raiseSome();
        under.openAlarms();
        tap(under, "History");
        under.giveHistory(100);
        expectWhole(under);
        for (const char *sheet : { "Filter...", "Save as CSV..." }) {
            tap(under, sheet);
            expectWhole(under);
            tap(under, "Cancel");
        }
    }
}
