// SPDX-License-Identifier: MIT
// What of a trace becomes which pixels.
#include "panel/trendview/finger_track.h"
#include "panel/trendview/trace_bars.h"
#include "panel/trendview/trace_colours.h"
#include "panel/trendview/trace_painter.h"

#include <QImage>
#include <QPainter>
#include <QRegion>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace dx4::panel;

TEST(TracePainter, NoLineIsDrawnAcrossAGap)
{
    TraceReading trace;
    const Column known { 5, 5, 5, 0, ColumnQuality::Good, false };
    trace.run = { 0, 1'000, { known, known, {}, {}, known, known } };
    TraceGround ground;
    ground.plot = QRect(0, 0, 60, 100);
    ground.from = 0;
    ground.to = 6'000;

    const QVector<QLine> drawn = linesOf(trace, niceScale(0, 10, 5, 0), ground, 6'000);

    ASSERT_EQ(drawn.size(), 2);
    EXPECT_EQ(drawn[0].x2(), 20);
    EXPECT_EQ(drawn[1].x1(), 40);
}

TEST(TracePainter, AStepBetweenTwoColumnsIsOneUprightLine)
{
    TraceReading trace;
    trace.run = { 0,
                  1'000,
                  { { 5, 5, 5, 0, ColumnQuality::Good, false },
                    { 9, 9, 9, 1, ColumnQuality::Good, false } } };
    TraceGround ground;
    ground.plot = QRect(0, 0, 20, 100);
    ground.to = 2'000;

    const QVector<QLine> drawn = linesOf(trace, niceScale(0, 10, 5, 0), ground, 2'000);

    ASSERT_EQ(drawn.size(), 3);
    EXPECT_EQ(drawn[1], QLine(10, drawn[0].y2(), 10, drawn[2].y1()));
}

TEST(TracePainter, NothingIsDrawnBehindThePresent)
{
    TraceReading trace;
    trace.run = { 0, 120'000, { { 5, 5, 5, 0, ColumnQuality::Good, false } } };
    TraceGround ground;
    ground.plot = QRect(0, 0, 120, 100);
    ground.to = 120'000;

    const QVector<QLine> drawn = linesOf(trace, niceScale(0, 10, 5, 0), ground, 30'000);

    ASSERT_EQ(drawn.size(), 1);
    EXPECT_EQ(drawn[0].x2(), 30);
}

TEST(TraceLane, AStateThatWasBothInAColumnIsHalfAsHigh)
{
    TraceReading lane;
    lane.choice.bit = 0;
    lane.run = { 0,
                 1'000,
                 { { 1, 1, 1, 0, ColumnQuality::Good, false },
                   { 0, 1, 1, 2, ColumnQuality::Good, false },
                   { 0, 0, 0, 1, ColumnQuality::Good, false },
                   {} } };
    TraceGround ground;
    ground.plot = QRect(0, 0, 40, 10);
    ground.to = 4'000;
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);

    drawLane(painter, lightLook(), { 0, 0, 40, 20 }, lane, ground, 4'000);

    const auto isFilled = [&](int x, int y) {
        return image.pixelColor(x, y) == lightLook().accent;
    };
    EXPECT_TRUE(isFilled(5, 5) && isFilled(5, 15));
    EXPECT_TRUE(!isFilled(15, 5) && isFilled(15, 15));
    EXPECT_FALSE(isFilled(25, 5) || isFilled(25, 15));
    EXPECT_EQ(image.pixelColor(35, 16), QColor(Qt::white));
}

TEST(TraceBars, JoinedOnesCoverTheSamePixels)
{
    std::mt19937 random(3);
    QVector<QLine> lines;
    int x = 0;
    for (int i = 0; i < 400; ++i) {
        const int right = x + static_cast<int>(random() % 3);
        const int top = static_cast<int>(random() % (i < 200 ? 20 : 90));
        const int bottom = 100 - static_cast<int>(random() % 20);
        lines.append({ x, bottom, x, top });
        lines.append({ x, (top + bottom) / 2, right, (top + bottom) / 2 });
        x = right + (i % 50 == 0 ? 7 : 0);
    }

    const QVector<QRect> bars = barsOf(lines, 1);
    const QVector<QRect> fewer = joined(bars);

    QRegion all;
    QRegion ofFewer;
    for (const QRect &bar : bars)
        all += bar;
    for (const QRect &bar : fewer)
        ofFewer += bar;
    EXPECT_EQ(ofFewer, all);
    int highest = 0;
    for (const QRect &bar : fewer)
        highest += bar.height();
    EXPECT_LT(highest, 20'000);
}

TEST(TraceBars, APeakKeepsItsHeight)
{
    const QVector<QRect> bars =
        joined(barsOf({ { 0, 50, 10, 50 }, { 10, 50, 10, 3 }, { 10, 50, 11, 50 } }, 1));

    int top = 100;
    for (const QRect &bar : bars)
        top = std::min(top, bar.top());
    EXPECT_EQ(top, 3);
}

TEST(FingerTrack, AFingerThatComesOrGoesMovesNothing)
{
    FingerTrack track;
    track.begin({ QPointF(10, 0) });

    const FingerTrack::Change change = track.move({ QPointF(40, 0), QPointF(90, 0) });

    EXPECT_DOUBLE_EQ(change.pan, 0.0);
    EXPECT_DOUBLE_EQ(change.zoom, 1.0);
}

TEST(TraceColours, AreReadableAsTextOnCards)
{
    for (const Look &look : { lightLook(), darkLook() }) {
        for (int i = 0; i < mostTraces; ++i)
            EXPECT_GE(contrast(traceColour(look, i), look.card), 4.5) << i;
    }
}
