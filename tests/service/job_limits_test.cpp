// SPDX-License-Identifier: MIT
// How far one-off reads reach, what is shown of them, and what becomes of jobs without a line.
#include "service_fixture.h"

using namespace dx4::host;
using Kind = AccessResult::Kind;

namespace {

struct ReadRow {
    int station;
    const char *regType;
    int address;
    int count;
    Kind kind;
    const char *reason;
};

LineParts noLine()
{
    return { nullptr, nullptr, QStringLiteral("no driver") };
}

} // namespace

TEST(ServiceReads, ReachFromTheFirstToTheLast)
{
    const ReadRow rows[] = {
        { 0, "D", 0, 1, Kind::Refused, "no station 0; stations are 1 to 247" },
        { 1, "D", 0, 1, Kind::Done, "" },
        { 247, "D", 0, 1, Kind::Done, "" },
        { 248, "D", 0, 1, Kind::Refused, "no station 248; stations are 1 to 247" },
        { 1, "D", 0, 16, Kind::Done, "" },
        { 1, "D", 0, 17, Kind::Refused, "17 registers; one read takes 1 to 16" },
        { 1, "D", 30, 2, Kind::Done, "" },
        { 1, "D", 30, 3, Kind::Refused,
          "D 32 (0xD020) is out of range; D reaches from 0 to 31 (0xD01F)" },
        { 1, "F", 0x0A0D, 1, Kind::Done, "" },
        { 1, "F", 0x0C0D, 1, Kind::Refused, "no such address" },
    };
    ServiceUnderTest under;
    under.start();

    for (const ReadRow &row : rows)
        under.service->read(row.station, QString::fromLatin1(row.regType), row.address, row.count);
    under.waitFor([&] { return under.reads.size() == std::size(rows); });

    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(under.reads.at(i).kind, rows[i].kind) << i;
        EXPECT_EQ(under.reads.at(i).reason.toStdString(), rows[i].reason);
    }
}

TEST(ServiceReads, OfWhatThereIsNotShowNothing)
{
    ServiceUnderTest under;
    under.start();

    under.service->read(0, QStringLiteral("D"), 0);
    under.service->read(248, QStringLiteral("D"), 0);
    under.service->read(1, QStringLiteral("D"), 0, 0);
    under.service->read(1, QStringLiteral("D"), 31, 2);
    under.service->read(1, QStringLiteral("F"), 0x0C0D);
    under.submit(248, "FRE", 0, { 1 });
    under.submit(1, "SW", 0, { 1 });
    under.service->read(247, QStringLiteral("D"), 31);
    under.waitFor([&] { return under.reads.size() == 6; });

    const auto snapshot = under.service->snapshot();
    ASSERT_EQ(snapshot->registers.size(), 1);
    EXPECT_TRUE(snapshot->find(247, QStringLiteral("D"), 31) != nullptr);
}

TEST(ServiceReads, OverALineThatIsDownSaySo)
{
    ServiceUnderTest under;
    under.playTime();
    under.plant->stations.line.close();
    under.plant->isRefusedToOpen = true;
    under.start();

    under.service->read(1, QStringLiteral("D"), 0);
    under.waitFor([&] { return under.reads.size() == 1; });

    EXPECT_EQ(under.reads.front().kind, Kind::LineDown);
    EXPECT_EQ(under.reads.front().reason.toStdString(),
              "station 1, D 0 (0xD000): the line is down");
}

TEST(ServiceRestores, ReadWriteAndReadAgainAndNothingElse)
{
    ServiceUnderTest under;
    under.start();
    ParameterSet set;
    set.values = { { 0x0105, 5 }, { 0x0106, 0 } };
    int restored = 0;
    QObject::connect(under.service.get(), &LineService::restored,
                     [&](int id, const RestoreReport &) { restored = id; });

    const int id = under.service->restore(1, set);
    under.waitFor([&] { return restored == id; });
    under.service.reset();

    const QByteArray read = framed("01 03 F1 05 00 02");
    EXPECT_EQ(under.plant->stations.line.sent().count(read), 2);
    EXPECT_EQ(under.plant->stations.line.sent().count(framed("01 06 F1 05 00 05")), 1);
    EXPECT_EQ(under.plant->stations.line.sent().count(framed("01 03 F1 05 00 01")), 0)
        << "a comparison of that register alone";
}

TEST(ServiceRestores, GoToTheStationThatIsNamedWithAResultForEachWrite)
{
    ServiceUnderTest under;
    const ScriptedLine::Change refusing = [](const QByteArray &reply) {
        const bool isSecond = reply == framed("02 06 F1 06 00 06");
        return MemoryLine::Answer { isSecond ? framed("02 86 02") : reply, Duration { 0 } };
    };
    under.plant->stations.changes.assign(20, refusing);
    under.start();
    ParameterSet set;
    set.values = { { 0x0105, 5 }, { 0x0106, 6 }, { 0x0107, 7 } };
    RestoreReport report;
    int restored = 0;
    QObject::connect(under.service.get(), &LineService::restored,
                     [&](int id, const RestoreReport &done) {
                         report = done;
                         restored = id;
                     });

    const int id = under.service->restore(2, set);
    under.waitFor([&] { return restored == id; });

    under.service.reset();
    EXPECT_EQ(report.written, 2) << "and the second was refused, though it was carried out";
    EXPECT_EQ(report.verified, 3);
    EXPECT_EQ((under.plant->stations.registers[{ 2, 0xF107 }]), 7);
}

TEST(ServiceWithoutLine, TellsEachJobAsNotBegun)
{
    ServiceUnderTest under;
    ServiceSettings settings;
    settings.runtime.stops = { { 3, 0 }, { 1, 0 } };
    LineService service(noLine, settings);
    std::vector<std::string> told;
    QObject::connect(&service, &LineService::readEnded, [&](int id, const AccessResult &result) {
        told.push_back(std::to_string(id) + (result.kind == Kind::NotBegun ? " not begun: " : "?")
                       + result.reason.toStdString());
    });
    QObject::connect(&service, &LineService::backedUp,
                     [&](int id, const ParameterSet &set, const QString &why) {
                         told.push_back(std::to_string(id) + " of station "
                                        + std::to_string(set.station) + ": " + why.toStdString());
                     });
    QObject::connect(&service, &LineService::restored, [&](int id, const RestoreReport &report) {
        told.push_back(std::to_string(id) + " unseen " + std::to_string(report.unseen) + ": "
                       + report.interrupted.toStdString());
    });
    QVector<int> unconfirmed;
    QObject::connect(&service, &LineService::stopEnded,
                     [&](int, const StopReport &report) { unconfirmed = report.unconfirmed; });
    ParameterSet set;
    set.station = 5;
    set.values = { { 0, 1 }, { 1, 2 } };

    service.read(1, QStringLiteral("D"), 0);
    service.backUp(set);
    service.restore(1, set);
    service.stop(Duration(0));
    under.waitFor([&] { return !unconfirmed.isEmpty(); });

    EXPECT_EQ(
        told,
        (Texts { "1 not begun: no driver", "2 of station 5: no driver", "3 unseen 2: no driver" }));
    EXPECT_EQ(unconfirmed, (QVector<int> { 3, 1 }));
}
