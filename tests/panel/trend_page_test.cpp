// SPDX-License-Identifier: MIT
// The page of the trend under fingers, mouse and keys.
#include "trend_fixture.h"
#include "widget_walk.h"

#include "panel/trendview/trace_save_sheet.h"
#include "panel/trendview/trace_sheet.h"
#include "panel/trendview/trigger_sheet.h"

#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace dx4::panel;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

namespace {

constexpr int patience = 20'000; // ms, for a busy machine

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

QAbstractButton *button(MadeUpTrend &trend, const char *text)
{
    for (QAbstractButton *found : trend.panel.window.findChildren<QAbstractButton *>()) {
        const bool isChip = qobject_cast<TraceChip *>(found);
        if (found->isVisible() && !isChip && found->text() == QLatin1String(text))
            return found;
    }
    return nullptr;
}

void click(MadeUpTrend &trend, const char *text)
{
    QAbstractButton *found = button(trend, text);
    ASSERT_NE(found, nullptr) << text;
    QTest::mouseClick(found, Qt::LeftButton);
    trend.show();
}

TraceView &view(MadeUpTrend &trend)
{
    return *trend.page->findChild<TraceView *>();
}

std::string said(MadeUpTrend &trend, int trace)
{
    const QString name = QStringLiteral("trace %1").arg(trace);
    return trend.page->findChild<TraceChip *>(name)->accessibleName().toStdString();
}

void drag(QWidget &widget, QPoint from, QPoint to)
{
    QTest::mousePress(&widget, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, widget.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &move);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
}

void expectWellPlaced(MadeUpTrend &trend)
{
    EXPECT_EQ(lines(wrongTargets(trend.panel.window)), "");
    EXPECT_EQ(lines(wrongStop(trend.panel.window)), "");
    EXPECT_EQ(lines(cutTexts(trend.panel.window)), "");
}

class TrendOfEverySize : public ::testing::TestWithParam<QSize> { };

} // namespace

TEST_P(TrendOfEverySize, EveryTargetIsLargeEnoughAndApartAndNoTextIsCut)
{
    MadeUpTrend trend(GetParam());
    trend.play(minutes(1), milliseconds(500));
    trend.page->choose(MadeUpTrend::allOf());
    trend.show();

    expectWellPlaced(trend);
}

TEST_P(TrendOfEverySize, EverySheetLeavesTheStopInReach)
{
    for (const char *name : { "Trigger...", "Traces...", "Save..." }) {
        MadeUpTrend trend(GetParam());
        trend.play(minutes(1), milliseconds(500));
        trend.show();

        click(trend, name);

        SCOPED_TRACE(name);
        expectWellPlaced(trend);
    }
}

INSTANTIATE_TEST_SUITE_P(Trend, TrendOfEverySize,
                         ::testing::Values(QSize(800, 480), QSize(1280, 800), QSize(1920, 1080)));

TEST(TrendPage, ShowsTheFirstDriveBeforeAnybodyChose)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();

    EXPECT_EQ(trend.page->choices().size(), 5);
    EXPECT_EQ(said(trend, 1), "set frequency, 50.00 Hz");
}

TEST(TrendPage, AValueThatIsTooOldIsDashes)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.silence(seconds(8));
    trend.show();

    EXPECT_EQ(said(trend, 1), "set frequency, ---");
}

TEST(TrendPage, PauseFreezesTheViewAndNotTheRecording)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    click(trend, "Pause");
    const Moment to = view(trend).scene().to;

    trend.play(seconds(30), milliseconds(100));
    trend.show();
    EXPECT_EQ(view(trend).scene().to, to);
    EXPECT_EQ(view(trend).scene().notes.value(1).left(9).toStdString(), "Paused at");

    click(trend, "Live");
    const ColumnRun run = view(trend).scene().traces.first().run;
    EXPECT_GE(run.columns.size(), 490U);
    for (const Column &column : run.columns)
        EXPECT_TRUE(column.isKnown());
}

TEST(TrendPage, DrawsNothingAnewThatWouldLookTheSame)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    click(trend, "Pause");
    trend.show();
    const int drawn = trend.page->drawn();

    for (int i = 0; i < 20; ++i) {
        trend.play(milliseconds(100), milliseconds(100));
        trend.show();
    }

    EXPECT_EQ(trend.page->drawn(), drawn);
}

TEST(TrendPage, ADayCostsNoMoreColumnsThanAMinute)
{
    MadeUpTrend trend;
    trend.play(hours(24), seconds(4));
    trend.page->choose(MadeUpTrend::allOf());

    for (const char *span : { "10 s", "1 min", "10 min", "1 h", "8 h", "24 h" }) {
        click(trend, span);
        const int most = view(trend).mostColumns();
        for (const TraceReading &trace : view(trend).scene().traces)
            EXPECT_LE(static_cast<int>(trace.run.columns.size()), most) << span;
    }
    EXPECT_LE(view(trend).mostColumns(), 1'600);
}

TEST(TrendPage, TheTriggerFreezesTheViewWithItsMomentInTheMiddle)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    click(trend, "Trigger...");
    click(trend, "A fault of any drive");
    EXPECT_EQ(view(trend).scene().notes.value(1).toStdString(), "Waiting for the trigger");

    trend.panel.made.read(1, "FU", 0, 2);
    trend.store.noteValues({ *trend.panel.made.find(1, "FU", 0) });
    const Moment at = trend.store.now();
    trend.play(seconds(40), milliseconds(100));
    trend.show();

    const TraceScene &scene = view(trend).scene();
    EXPECT_EQ((scene.from + scene.to) / 2, at);
    EXPECT_EQ(scene.notes.value(1).toStdString(), "Trigger: Feed pump, overvoltage");
    EXPECT_GE(scene.traces.first().run.columns.size(), 490U);
}

TEST(TrendPage, ALevelIsTypedOnTheNumberPad)
{
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    click(trend, "Trigger...");
    click(trend, "Feed pump: output frequency falls to a level...");
    click(trend, "5");
    auto *enter = static_cast<HoldButton *>(button(trend, "Hold to set"));
    ASSERT_NE(enter, nullptr);
    QTest::mousePress(enter, Qt::LeftButton);
    for (int i = 0; i < 9; ++i) {
        trend.panel.made.advance(milliseconds(100));
        enter->look();
    }
    QTest::mouseRelease(enter, Qt::LeftButton);
    EXPECT_TRUE(trend.store.isArmed());

    trend.play(seconds(30), milliseconds(100));

    EXPECT_FALSE(trend.store.isArmed());
    EXPECT_FALSE(trend.page->timeWindow().isLive());
}

TEST(TrendPage, CursorsTellWhatLiesBetweenThem)
{
    MadeUpTrend trend;
    trend.play(seconds(60), milliseconds(100));
    trend.show();
    trend.page->choose({ { { 1, QStringLiteral("D"), 5 }, -1 } });

    click(trend, "Cursors");

    const auto cursors = view(trend).scene().cursors;
    ASSERT_TRUE(cursors[0] && cursors[1]);
    EXPECT_EQ(*cursors[1] - *cursors[0], 20'000);
    EXPECT_EQ(said(trend, 0),
              "heat sink, A 41.4  B 41.6, B-A 0.2 \xC2\xB0"
              "C");
    EXPECT_FALSE(trend.page->timeWindow().isLive());
}

TEST(TrendPage, ACursorIsDraggedByMouseAndMovedByKeys)
{
    MadeUpTrend trend;
    trend.play(seconds(60), milliseconds(100));
    trend.show();
    click(trend, "Cursors");
    TraceView &plot = view(trend);
    const int x = plot.xOf(*plot.scene().cursors[0]);
    const int y = plot.plotRect().center().y();

    drag(plot, { x + 10, y }, { x + 60, y });
    trend.show();
    EXPECT_NEAR(plot.xOf(*plot.scene().cursors[0]), x + 60, 1);

    QTest::keyClick(&plot, Qt::Key_Right, Qt::ShiftModifier);
    trend.show();
    EXPECT_NEAR(plot.xOf(*plot.scene().cursors[0]), x + 61, 1);
}

TEST(TrendPage, IsPannedByMouseAndKeys)
{
    MadeUpTrend trend;
    trend.play(minutes(10), milliseconds(500));
    trend.show();
    TraceView &plot = view(trend);
    const QPoint middle = plot.plotRect().center();
    const Moment to = plot.scene().to;

    drag(plot, middle, middle + QPoint(plot.plotRect().width() / 4, 0));
    trend.show();
    EXPECT_NEAR(static_cast<double>(plot.scene().to), static_cast<double>(to - 15'000), 500.0);

    QTest::keyClick(&plot, Qt::Key_PageUp);
    EXPECT_NEAR(static_cast<double>(plot.scene().to), static_cast<double>(to - 75'000), 500.0);

    QTest::keyClick(&plot, Qt::Key_End);
    EXPECT_TRUE(trend.page->timeWindow().isLive());
}

TEST(TrendPage, IsZoomedByWheelAndKeys)
{
    MadeUpTrend trend;
    trend.play(minutes(10), milliseconds(500));
    trend.show();
    TraceView &plot = view(trend);
    const QPointF middle(plot.plotRect().center());

    QWheelEvent wheel(middle, middle, {}, { 0, 120 }, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&plot, &wheel);
    EXPECT_EQ(trend.page->timeWindow().span(), 48'000);

    QTest::keyClick(&plot, Qt::Key_Minus);
    EXPECT_EQ(trend.page->timeWindow().span(), 72'000);
}

TEST(TrendPage, IsZoomedByTwoFingersAndPannedByOne)
{
    MadeUpTrend trend;
    trend.play(minutes(10), milliseconds(500));
    trend.show();
    TraceView &plot = view(trend);
    auto *screen = QTest::createTouchDevice();
    const QPoint middle = plot.plotRect().center();
    const auto aside = [&](int by) { return middle + QPoint(by, 0); };

    QTest::touchEvent(&plot, screen).press(1, aside(-50), &plot).press(2, aside(50), &plot);
    QTest::touchEvent(&plot, screen).move(1, aside(-100), &plot).move(2, aside(100), &plot);
    QTest::touchEvent(&plot, screen).release(1, aside(-100), &plot).release(2, aside(100), &plot);
    EXPECT_EQ(trend.page->timeWindow().span(), 30'000);

    QTest::touchEvent(&plot, screen).press(1, middle, &plot);
    QTest::touchEvent(&plot, screen).move(1, aside(80), &plot);
    QTest::touchEvent(&plot, screen).release(1, aside(80), &plot);
    EXPECT_FALSE(trend.page->timeWindow().isLive());
}

TEST(TrendPage, AMarkerThatIsTouchedSaysWhatItWas)
{
    MadeUpTrend trend;
    trend.play(seconds(50), milliseconds(100));
    trend.store.noteWriteEnded(
        ended(1, dx4::host::WriteEnd::Confirmed, "station 1, CW: 1 written"));
    const Moment at = trend.store.now();
    trend.play(seconds(5), milliseconds(100));
    trend.show();
    TraceView &plot = view(trend);
    const QImage before = plot.grab().toImage();

    QTest::mouseClick(&plot, Qt::LeftButton, {}, { plot.xOf(at), plot.plotRect().center().y() });

    EXPECT_NE(plot.grab().toImage(), before);
}

TEST(TrendPage, ATraceHasAScaleOfItsOwnWithRoundSteps)
{
    MadeUpTrend trend;
    trend.play(seconds(60), milliseconds(100));
    trend.page->choose(MadeUpTrend::allOf(3));
    trend.show();

    const NiceScale frequency = view(trend).scaleOf(0);
    const NiceScale current = view(trend).scaleOf(2);
    EXPECT_DOUBLE_EQ(frequency.step, 20.0);
    EXPECT_DOUBLE_EQ(frequency.lowest, 0.0);
    EXPECT_LE(current.highest(), 10.0);
}

TEST(TrendPage, TracesAreChosenByTouchUpToEight)
{
    MadeUpTrend trend({ 1280, 800 });
    trend.play(seconds(5), milliseconds(100));
    trend.page->choose(MadeUpTrend::allOf());
    trend.show();
    click(trend, "Traces...");
    EXPECT_FALSE(button(trend, "fault")->isEnabled());
    expectWellPlaced(trend);

    click(trend, "speed");
    click(trend, "fault");

    EXPECT_EQ(trend.page->choices().size(), 10);
    EXPECT_TRUE(trend.page->choices().contains({ { 1, QStringLiteral("FU"), 0 }, -1 }));
}

TEST(TrendPage, SavesATableAndReplacesNoFileUnasked)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("trend.csv"));
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    click(trend, "Save...");
    auto *text = trend.page->findChild<QLabel *>(QStringLiteral("saved"));
    trend.page->findChild<QLineEdit *>()->setText(path);

    click(trend, "Save");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return text->text().startsWith(QLatin1String("Saved")); }, patience));
    click(trend, "Save");
    ASSERT_TRUE(QTest::qWaitFor([&] { return text->text().startsWith(QLatin1String("There is")); },
                                patience));
    click(trend, "Replace the file");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return text->text().startsWith(QLatin1String("Saved")); }, patience));

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readLine().left(43).toStdString(),
              "time,Feed pump output frequency [Hz] lowest");
}

TEST(TrendPage, SavesAPicture)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("trend.png"));
    MadeUpTrend trend;
    trend.play(seconds(20), milliseconds(100));
    trend.show();
    click(trend, "Save...");
    auto *text = trend.page->findChild<QLabel *>(QStringLiteral("saved"));
    click(trend, "Picture (PNG)");
    trend.page->findChild<QLineEdit *>()->setText(path);

    click(trend, "Save");

    ASSERT_TRUE(
        QTest::qWaitFor([&] { return text->text().startsWith(QLatin1String("Saved")); }, patience));
    EXPECT_GT(QImage(path).width(), 600);
}
