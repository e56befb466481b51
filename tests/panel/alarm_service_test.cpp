// SPDX-License-Identifier: MIT
// Alarms of a service with stations on a line in memory, over a restart of the panel.
#include "journal/journal_keeper.h"
#include "panel/alarms/journal_port.h"
#include "service_fixture.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4;
using namespace dx4::panel;

namespace {

constexpr int faultRegister = 0x2001;
constexpr int alarmCode = 2;
const AlarmKey faultKey { AlarmKind::Fault, 1, alarmCode, {} };
const QString lineName = QStringLiteral("a");

/// The clock of one run of the panel; the next one begins later.
struct RunClock {
    journal::Time now = 1'772'366'400'000;

    QDateTime utc() const { return QDateTime::fromMSecsSinceEpoch(now, Qt::UTC); }
};

/// A panel that is started, and ended with this.
struct PanelRun {
    PanelRun(ServiceUnderTest &service, const QString &path, const RunClock &clock)
        : keeper(path, settings(clock))
        , watch(port(service, clock))
        , desk(path)
    {
        keeper.watch(*service.service, lineName);
        watch.follow(*service.service);
        restoreAlarms(desk, watch, lineName, clock.now);
    }

    static journal::KeeperSettings settings(const RunClock &clock)
    {
        journal::KeeperSettings settings;
        settings.clock = [&clock] { return clock.now; };
        return settings;
    }

    AlarmPort port(ServiceUnderTest &service, const RunClock &clock)
    {
        AlarmPort port;
        port.snapshot = [&service] { return service.service->snapshot(); };
        port.note = [this](journal::Event event) {
            event.line = lineName;
            keeper.note(event);
        };
        port.utc = [&clock] { return clock.utc(); };
        port.who = QStringLiteral("anna");
        port.stations = { 1 };
        return port;
    }

    AlarmState state(const AlarmKey &key) const
    {
        const Alarm *alarm = watch.book().find(key);
        return alarm ? alarm->state : AlarmState::Normal;
    }

    journal::JournalKeeper keeper;
    AlarmWatch watch;
    JournalDesk desk;
};

class AlarmsOverAService : public ::testing::Test {
protected:
    AlarmsOverAService()
        : under(polling({ { 1, QStringLiteral("FU") } }))
    {
        under.playTime();
        under.plant->stations.registers[{ 1, faultRegister }] = alarmCode;
        under.start();
    }

    QTemporaryDir folder;
    QString path { folder.filePath(QStringLiteral("journal.sqlite")) };
    RunClock clock;
    ServiceUnderTest under;
};

} // namespace

TEST_F(AlarmsOverAService, ARestartShowsWhatNobodyHasAcknowledged)
{
    {
        PanelRun first(under, path, clock);
        under.waitFor([&] { return first.state(faultKey) == AlarmState::Active; });
        ASSERT_TRUE(first.keeper.flush());
    }
    clock.now += 60'000;

    PanelRun second(under, path, clock);
    under.waitFor([&] {
        const Alarm *alarm = second.watch.book().find(faultKey);
        return alarm && alarm->since == clock.now - 60'000;
    });

    EXPECT_EQ(second.state(faultKey), AlarmState::Active);
}

TEST_F(AlarmsOverAService, ARestartKnowsWhatWasAcknowledged)
{
    {
        PanelRun first(under, path, clock);
        under.waitFor([&] { return first.state(faultKey) == AlarmState::Active; });
        first.watch.acknowledge({ faultKey });
        ASSERT_TRUE(first.keeper.flush());
    }
    clock.now += 60'000;

    PanelRun second(under, path, clock);
    under.waitFor([&] { return second.state(faultKey) == AlarmState::Acknowledged; });

    EXPECT_EQ(second.watch.book().unacknowledged(), 0);
}
