// SPDX-License-Identifier: MIT
// When a stop is sent again that was not confirmed: soon at first, and seldom in the end.
#include "runtime_fixture.h"

using namespace dx4::host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

LineSettings plainLine()
{
    LineSettings settings;
    settings.speed = 19200;
    settings.responseTimeout = milliseconds(100);
    return settings;
}

/// One drive that is polled, was heard, and turns down each stop.
class RejectingDrive : public RuntimeUnderTest {
public:
    explicit RejectingDrive(const QVector<StopCommand> &stops = { { 1, 0 } })
        : RuntimeUnderTest(settingsWith(stops), plainLine())
    {
        host.setPlan(planOf({ { 1, QStringLiteral("SW") } }));
        runFor(seconds(1));
        stations.refused.insert({ 1, 0x1001 });
    }

    /// Milliseconds, rounded to tenths of a second, before each stop that is sent in `span`.
    QVector<int> pausesIn(Duration span)
    {
        QVector<int> pauses;
        const Duration end = stations.line.now() + span;
        Duration last = stations.line.now();
        int before = sent(1, 6);
        while (stations.line.now() < end) {
            if (host.step() == Runtime::Step::Idle)
                stations.line.advance(host.idleTime());
            if (sent(1, 6) == before)
                continue;
            before = sent(1, 6);
            const auto pause = std::chrono::duration_cast<milliseconds>(stations.line.now() - last);
            pauses.append(static_cast<int>((pause.count() + 50) / 100 * 100));
            last = stations.line.now();
        }
        return pauses;
    }

private:
    static RuntimeSettings settingsWith(const QVector<StopCommand> &stops)
    {
        RuntimeSettings settings;
        settings.stops = stops;
        return settings;
    }
};

} // namespace

TEST(StopPauses, DoubleFromOneTryToTheNextUpToTenSeconds)
{
    RejectingDrive drive;
    drive.host.stop(Duration { 0 });

    const QVector<int> pauses = drive.pausesIn(seconds(40));

    EXPECT_EQ(pauses, (QVector<int> { 0, 200, 400, 800, 1600, 3200, 6400, 10000, 10000 }));
}
