// SPDX-License-Identifier: MIT
// A snapshot of a fault as a file.
#include "past_fixture.h"

#include "panel/past/past_file.h"
#include "panel/past/past_keeper.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace dx4::panel;
using dx4::journal::Event;

namespace {

std::string why(const QByteArray &json)
{
    QString error;
    EXPECT_FALSE(recordOf(json, &error).has_value());
    return error.toStdString();
}

PastRecord readBack(const PastRecord &record)
{
    QString error;
    const auto read = recordOf(jsonOf(record), &error);
    EXPECT_TRUE(read) << error.toStdString();
    return read.value_or(PastRecord());
}

struct KeptIn {
    explicit KeptIn(const QString &folder)
        : desk(QString())
        , keeper(desk, port(folder))
    {
        QObject::connect(&keeper, &PastKeeper::kept,
                         [this](const QString &at, const QString &said) {
                             file = at;
                             error = said;
                             isKept = true;
                         });
    }

    PastPort port(const QString &folder)
    {
        PastPort port;
        port.folder = folder;
        port.config.faults.insert(2, QStringLiteral("overvoltage"));
        dx4::host::StationConfig drive;
        drive.address = 3;
        drive.name = QStringLiteral("Conveyor");
        port.config.stations.append(drive);
        port.note = [this](const Event &event) { noted.push_back(event.text); };
        return port;
    }

    void keep(const PastRecord &record)
    {
        keeper.keep(record);
        while (!isKept)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    std::vector<QString> noted;
    QString file;
    QString error;
    bool isKept = false;
    JournalDesk desk;
    PastKeeper keeper;
};

} // namespace

TEST(PastFile, GivesBackWhatWasPutIn)
{
    const PastRecord record = pastFault();

    const PastRecord read = readBack(record);

    EXPECT_EQ(jsonOf(read).toStdString(), jsonOf(record).toStdString());
    EXPECT_EQ(read.faultAt, faultNoon);
    EXPECT_EQ(read.station, 3);
    EXPECT_EQ(read.code, 2);
    EXPECT_EQ(read.drives.value(3).toStdString(), "Conveyor");
    EXPECT_EQ(read.registers.size(), 30);
    EXPECT_EQ(read.registers[0].scaling.unit.toStdString(), "Hz");
    EXPECT_EQ(read.changes.size(), 36);
    EXPECT_EQ(read.changes.last().time, faultNoon + 2000);
    ASSERT_TRUE(read.frames);
    EXPECT_EQ(read.frames->at(1).bytes, QByteArray::fromHex("0303020002418c"));
    ASSERT_TRUE(read.parameters);
    EXPECT_EQ(read.parameters->at(0).before, 7);
}

TEST(PastFile, QualityAndAgeAreKept)
{
    PastRecord record = pastFault();
    PastChange change;
    change.time = faultNoon;
    change.state.known = true;
    change.state.stale = true;
    change.state.failed = true;
    change.state.age = std::chrono::milliseconds(5250);
    record.changes = { change };

    const PastChange read = readBack(record).changes[0];

    EXPECT_TRUE(read.state.known);
    EXPECT_TRUE(read.state.stale);
    EXPECT_TRUE(read.state.failed);
    EXPECT_FALSE(read.state.writePending);
    EXPECT_EQ(read.state.age, std::chrono::milliseconds(5250));
}

TEST(PastFile, WhatWasNotKeptIsNotThere)
{
    PastRecord record = pastFault();
    record.frames.reset();
    record.parameters.reset();

    const PastRecord read = readBack(record);

    EXPECT_FALSE(read.frames);
    EXPECT_FALSE(read.parameters);
}

TEST(PastFile, WhatDoesNotFitIsRefusedInWords)
{
    const QByteArray whole = jsonOf(pastFault());
    const auto with = [&](const char *what, const char *instead) {
        return QByteArray(whole).replace(what, instead);
    };

    EXPECT_EQ(why("{}"), "it is no snapshot of a fault");
    EXPECT_EQ(why("nonsense").substr(0, 13), "it is no JSON");
    EXPECT_EQ(why(with("\"version\":1", "\"version\":2")),
              "it is of version 2; this program knows version 1");
    EXPECT_EQ(why(with("\"from\"", "\"form\"")), "\"from\" is missing or is not what it should be");
    EXPECT_EQ(why(with("[2000,20,", "[2000,30,")),
              "\"values\" is missing or is not what it should be");
    EXPECT_EQ(why(with("\"registers\"", "\"register\"")),
              "\"registers\" is missing or is not what it should be");
}

TEST(PastFile, AnyPartOfAFileIsRefusedAndNoneEndsTheProgram)
{
    const QByteArray whole = jsonOf(pastFault()).trimmed();

    for (int length = 0; length < whole.size(); length += 7) {
        QString error;
        EXPECT_FALSE(recordOf(whole.left(length), &error)) << length;
        EXPECT_FALSE(error.isEmpty());
    }
}

TEST(PastFile, TheNewestAreKept)
{
    const QTemporaryDir folder;
    PastRecord record = pastFault();
    QString error;
    for (int i = 0; i < 5; ++i) {
        record.faultAt = faultNoon + i * 1000;
        ASSERT_TRUE(savePast(record, QDir(folder.path()).filePath(pastFileName(record)), &error));
    }

    keepNewest(folder.path(), 2);

    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files, QDir::Name),
              (QStringList { QStringLiteral("fault-20260301-120003-station-3-code-2.json"),
                             QStringLiteral("fault-20260301-120004-station-3-code-2.json") }));
}

TEST(PastFile, AFileThatIsNotThereSaysWhich)
{
    QString error;

    EXPECT_FALSE(loadPast(QStringLiteral("/nowhere/fault.json"), &error));

    EXPECT_EQ(error.toStdString().substr(0, 21), "/nowhere/fault.json: ");
}

TEST(PastKeeper, WritesAFileThatIsReadBackAndNotesIt)
{
    const QTemporaryDir folder;
    KeptIn kept(folder.filePath(QStringLiteral("snapshots")));

    kept.keep(pastFault());

    QString error;
    const auto read = loadPast(kept.file, &error);
    ASSERT_TRUE(read) << error.toStdString();
    EXPECT_EQ(read->drives.value(3).toStdString(), "Conveyor");
    EXPECT_FALSE(read->parameters) << "no journal is kept";
    ASSERT_EQ(kept.noted.size(), 1U);
    EXPECT_EQ(kept.noted[0].toStdString(),
              "snapshot of the fault kept as " + kept.file.toStdString());
}

TEST(PastKeeper, WhatCannotBeWrittenIsTold)
{
    KeptIn kept(QStringLiteral("/dev/null/snapshots"));

    kept.keep(pastFault());

    EXPECT_EQ(kept.error.toStdString(), "/dev/null/snapshots: the folder cannot be made");
    Alarm alarm;
    alarm.key = { AlarmKind::Fault, 3, 2, {} };
    EXPECT_EQ(kept.keeper.textOf(alarm).toStdString(),
              "The values around it could not be kept: /dev/null/snapshots: the folder cannot be "
              "made");
}
