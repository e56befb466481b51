// SPDX-License-Identifier: MIT
// What the line's thread has for the receiver's: nothing lost, nobody told twice.
#include "host/service/outbox.h"

#include <gtest/gtest.h>

#include <string>

using namespace dx4::host;

namespace {

RegisterValue changed(int station, int address, quint16 value)
{
    RegisterValue result;
    result.station = station;
    result.regType = QStringLiteral("D");
    result.address = address;
    result.state.value = value;
    return result;
}

class OutboxTest : public ::testing::Test {
protected:
    void post(const QVector<RegisterValue> &changes, std::vector<ServiceEvent> events = {})
    {
        outbox.post(std::make_shared<const LineSnapshot>(), changes, std::move(events));
    }

    /// The next delivery: "station.address=value" of each change, or the lost station.
    std::string taken()
    {
        const Delivery delivery = outbox.take();
        std::string text;
        for (const RegisterValue &value : delivery.changes)
            text += std::to_string(value.station) + '.' + std::to_string(value.address) + '='
                + std::to_string(value.state.value) + ' ';
        if (delivery.event)
            text += "lost " + std::to_string(std::get<StationLost>(*delivery.event).station);
        return text;
    }

    int told = 0;
    Outbox outbox { [this] { ++told; } };
};

} // namespace

TEST_F(OutboxTest, TheReceiverIsToldOnceUntilItTakes)
{
    post({});
    outbox.post(std::vector<ServiceEvent> {});
    EXPECT_EQ(told, 0);

    post({ changed(1, 0, 5) });
    post({ changed(1, 0, 6) });
    outbox.post({ StationLost { 1 } });
    EXPECT_EQ(told, 1);

    EXPECT_EQ(taken(), "1.0=6 ");
    EXPECT_EQ(told, 2) << "an event is left";
    EXPECT_EQ(taken(), "lost 1");
    EXPECT_EQ(told, 2);
    EXPECT_EQ(taken(), "");
    EXPECT_EQ(told, 2);
    outbox.post({ StationLost { 2 } });
    EXPECT_EQ(told, 3);
}

TEST_F(OutboxTest, ASnapshotWithAnEventAloneIsTold)
{
    post({}, { StationLost { 1 } });

    EXPECT_EQ(told, 1);
    EXPECT_EQ(taken(), "lost 1");
}

TEST_F(OutboxTest, ChangesAndEventsTakeTurns)
{
    post({ changed(1, 0, 5) }, { StationLost { 1 }, StationLost { 2 } });
    EXPECT_EQ(taken(), "1.0=5 ");
    post({ changed(1, 0, 6) });

    EXPECT_EQ(taken(), "lost 1");
    EXPECT_EQ(taken(), "1.0=6 ");
    post({ changed(1, 0, 7) });
    EXPECT_EQ(taken(), "lost 2");
    EXPECT_EQ(taken(), "1.0=7 ");
    post({ changed(1, 0, 8) });
    EXPECT_EQ(taken(), "1.0=8 ") << "there is no event that waits";
    EXPECT_EQ(told, 6) << "with each post that found it idle, and each take that left something";
}

TEST_F(OutboxTest, TheNewestValueOfEachRegisterIsTaken)
{
    post({ changed(2, 0, 1), changed(1, 3, 2), changed(1, 2, 3) });
    post({ changed(1, 3, 4) });

    EXPECT_EQ(taken(), "1.2=3 1.3=4 2.0=1 ");
}

TEST_F(OutboxTest, TheNewestSnapshotIsShown)
{
    const auto empty = outbox.snapshot();
    auto snapshot = std::make_shared<LineSnapshot>();
    snapshot->isOpen = true;

    outbox.post(snapshot, {}, {});

    ASSERT_TRUE(empty != nullptr);
    EXPECT_FALSE(empty->isOpen);
    EXPECT_EQ(outbox.snapshot(), snapshot);
}

TEST_F(OutboxTest, EventsCanBeTakenAlone)
{
    post({ changed(1, 0, 5) }, { StationLost { 1 }, StationLost { 2 } });

    EXPECT_EQ(std::get<StationLost>(*outbox.takeEvent()).station, 1);
    EXPECT_EQ(std::get<StationLost>(*outbox.takeEvent()).station, 2);
    EXPECT_FALSE(outbox.takeEvent().has_value());
    EXPECT_EQ(told, 1);
}

TEST(LineSnapshotTest, ARegisterIsFoundByStationTypeAndAddress)
{
    LineSnapshot snapshot;
    snapshot.registers = { changed(1, 2, 5), changed(1, 4, 6), changed(2, 2, 7) };
    const QString type = QStringLiteral("D");

    ASSERT_TRUE(snapshot.find(1, type, 4) != nullptr);
    EXPECT_EQ(snapshot.find(1, type, 4)->state.value, 6);
    EXPECT_EQ(snapshot.find(2, type, 2)->state.value, 7);
    EXPECT_EQ(snapshot.find(1, type, 3), nullptr);
    EXPECT_EQ(snapshot.find(2, type, 3), nullptr);
    EXPECT_EQ(snapshot.find(1, QStringLiteral("F"), 2), nullptr);
    EXPECT_EQ(LineSnapshot().find(1, type, 2), nullptr);
}

TEST(LineSnapshotTest, AValueWasReadBeforeTheSnapshotByItsAge)
{
    LineSnapshot snapshot;
    snapshot.takenAt = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC);
    RegisterValue value = changed(1, 0, 5);
    EXPECT_FALSE(snapshot.readAt(value).isValid());
    EXPECT_EQ(value.text().toStdString(), "-");

    value.state.known = true;
    value.state.age = std::chrono::milliseconds(1500);

    EXPECT_EQ(snapshot.readAt(value).toMSecsSinceEpoch(), 1'699'999'998'500);
    EXPECT_EQ(value.text().toStdString(), "5");
}
