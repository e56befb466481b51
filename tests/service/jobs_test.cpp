// SPDX-License-Identifier: MIT
// One-off reads, backups and restores of a service.
#include "service_fixture.h"

#include <utility>

using namespace dx4::host;

namespace {

class ServiceJobs : public ::testing::Test {
protected:
    void start()
    {
        under.start();
        QObject::connect(under.service.get(), &LineService::backedUp,
                         [this](int id, const ParameterSet &read, const QString &why) {
                             set = read;
                             error = why.toStdString();
                             ended = id;
                         });
        QObject::connect(under.service.get(), &LineService::restored,
                         [this](int id, const RestoreReport &done) {
                             report = done;
                             ended = id;
                         });
        const auto note = [this] { endedBefore = ended; };
        QObject::connect(under.service.get(), &LineService::readEnded, note);
        QObject::connect(under.service.get(), &LineService::writeEnded, note);
        QObject::connect(under.service.get(), &LineService::jobProgressed,
                         [this](int, int settled, int) { progress.push_back(settled); });
    }

    /// Begins a backup and holds the line behind so many requests; gives its id.
    int backUpAndHoldAfter(int requests)
    {
        under.plant->hold();
        start();
        under.plant->awaitHeld();
        const int backup = under.service->backUp({});
        under.plant->letGo(requests);
        under.plant->awaitHeld();
        return backup;
    }

    int &reg(int modbusRegister) { return under.plant->stations.registers[{ 1, modbusRegister }]; }

    ParameterSet set;
    RestoreReport report;
    std::string error;
    std::vector<int> progress;
    int ended = 0; ///< id of the backup or restore that ended last
    int endedBefore = 0; ///< the same when a read or a write ended
    ServiceUnderTest under { polling({ { 1, QStringLiteral("SW") } }) };
};

} // namespace

TEST_F(ServiceJobs, ReadBringsItsValuesAndTheyShow)
{
    reg(0xD003) = 33;
    start();

    under.service->read(1, QStringLiteral("D"), 3, 2);
    under.waitFor([&] { return !under.reads.empty(); });

    EXPECT_EQ(under.reads.front().kind, AccessResult::Kind::Done);
    EXPECT_EQ(under.reads.front().values, (QVector<quint16> { 33, 0 }));
    EXPECT_EQ(under.shown(1, "D", 3), 33);
}

TEST_F(ServiceJobs, ReadOfNoSuchRegisterIsRefused)
{
    start();

    under.service->read(1, QStringLiteral("D"), 99);
    under.service->read(300, QStringLiteral("D"), 0);
    under.service->read(1, QStringLiteral("D"), 0, 0);
    under.service->read(1, QStringLiteral("XY"), 0);
    under.waitFor([&] { return under.reads.size() == 4; });

    for (const AccessResult &read : under.reads)
        EXPECT_EQ(read.kind, AccessResult::Kind::Refused);
    EXPECT_EQ(under.reads.at(1).reason.toStdString(), "no station 300; stations are 1 to 247");
    EXPECT_EQ(under.reads.at(2).reason.toStdString(), "0 registers; one read takes 1 to 16");
}

TEST_F(ServiceJobs, BackupAndRestoreBringTheParametersBack)
{
    reg(0xF105) = 5;
    start();
    const int backup = under.service->backUp({});
    under.waitFor([&] { return ended == backup; });
    const ParameterSet before = set;
    const std::vector<int> ofTheBackup = std::exchange(progress, {});
    under.plant->hold();
    under.plant->awaitHeld();
    reg(0xF105) = 99;
    under.plant->release();

    const int restore = under.service->restore(1, before);
    under.waitFor([&] { return ended == restore; });

    EXPECT_EQ(error, "");
    EXPECT_TRUE(isComplete(before));
    EXPECT_TRUE(report.isRestored()) << report.interrupted.toStdString();
    EXPECT_EQ(report.written, 1);
    EXPECT_EQ(ofTheBackup.front(), 16);
    EXPECT_EQ(ofTheBackup.back(), 203);
    EXPECT_EQ(progress.front(), 16);
    EXPECT_EQ(progress.back(), 203);
}

TEST_F(ServiceJobs, EachWriteOfARestoreIsToldWithWhatWasHeldBefore)
{
    reg(0xF105) = 99;
    ParameterSet wanted;
    wanted.values.insert(0x105, 5);
    start();
    std::vector<WriteOutcome> writes;
    QObject::connect(under.service.get(), &LineService::jobWrote,
                     [&](const WriteOutcome &outcome) { writes.push_back(outcome); });

    const int restore = under.service->restore(1, wanted);
    under.waitFor([&] { return ended == restore; });

    ASSERT_EQ(writes.size(), 1U);
    EXPECT_EQ(writes.front().id, restore);
    EXPECT_EQ(writes.front().end, WriteEnd::Confirmed);
    EXPECT_EQ(writes.front().wish.address, 0x105);
    EXPECT_EQ(writes.front().wish.values, QVector<quint16> { 5 });
    EXPECT_EQ(writes.front().before, QVector<quint16> { 99 });
    EXPECT_TRUE(under.outcomes.empty());
}

TEST_F(ServiceJobs, ReadGoesBetweenTheRequestsOfABackup)
{
    const int backup = backUpAndHoldAfter(3);

    const int read = under.service->read(1, QStringLiteral("D"), 3);
    under.plant->release();
    under.waitFor([&] { return ended == backup; });

    EXPECT_EQ(under.reads.size(), 1U);
    EXPECT_EQ(endedBefore, 0);
    EXPECT_NE(read, 0);
    EXPECT_TRUE(isComplete(set));
}

TEST_F(ServiceJobs, BackupIsCancelledBehindAReadInItsMidst)
{
    const int backup = backUpAndHoldAfter(3);
    under.service->read(1, QStringLiteral("D"), 3);
    under.plant->letGo(6);
    under.waitFor([&] { return !under.reads.empty(); });
    under.plant->awaitHeld();

    under.service->cancelJob(backup);
    under.plant->release();
    under.waitFor([&] { return ended == backup; });

    EXPECT_EQ(error, "cancelled");
}

TEST_F(ServiceJobs, BackupThatIsCancelledBeforeItBeginsReadsNothing)
{
    under.plant->hold();
    start();
    under.plant->awaitHeld();
    const int backup = under.service->backUp({});

    under.service->cancelJob(backup);
    under.plant->release();
    under.waitFor([&] { return ended == backup; });

    EXPECT_EQ(error, "cancelled");
    EXPECT_TRUE(set.values.isEmpty());
}

TEST_F(ServiceJobs, StopEndsTheJobUnderWayAndNoneThatIsAskedForLater)
{
    const int backup = backUpAndHoldAfter(3);

    under.service->stop(std::chrono::seconds(1));
    under.plant->release();
    under.waitFor([&] { return ended == backup; });
    under.waitFor([&] { return !under.stops.empty(); });
    under.service->read(1, QStringLiteral("D"), 3);
    under.waitFor([&] { return !under.reads.empty(); });

    EXPECT_EQ(error, "a stop goes first");
    EXPECT_FALSE(isComplete(set));
    EXPECT_EQ(under.reads.front().kind, AccessResult::Kind::Done);
}

TEST_F(ServiceJobs, CancelledBackupKeepsWhatItReadAndGoesOnFromThere)
{
    const int backup = backUpAndHoldAfter(5);

    under.service->cancelJob(backup);
    under.plant->release();
    under.waitFor([&] { return ended == backup; });
    const ParameterSet part = set;
    const std::string why = error;
    const int rest = under.service->backUp(part);
    under.waitFor([&] { return ended == rest; });

    EXPECT_EQ(why, "cancelled");
    EXPECT_FALSE(part.values.isEmpty());
    EXPECT_FALSE(isComplete(part));
    EXPECT_TRUE(isComplete(set));
}

TEST_F(ServiceJobs, PollingAndWritesGoOnDuringABackup)
{
    const int backup = backUpAndHoldAfter(3);

    under.submit(1, "FRE", 0, { 5 });
    under.plant->release();
    under.waitFor([&] { return ended == backup; });

    ASSERT_EQ(under.outcomes.size(), 1U);
    EXPECT_EQ(endedBefore, 0);
    EXPECT_EQ(under.outcomes.front().end, WriteEnd::Confirmed);
}

TEST_F(ServiceJobs, StationThatCannotBeIsRefused)
{
    start();
    ParameterSet begun;
    begun.station = 0;

    const int backup = under.service->backUp(begun);
    under.waitFor([&] { return ended == backup; });
    const int restore = under.service->restore(248, {});
    under.waitFor([&] { return ended == restore; });

    EXPECT_EQ(error, "no station 0; stations are 1 to 247");
    EXPECT_EQ(report.interrupted.toStdString(), "no station 248; stations are 1 to 247");
}
