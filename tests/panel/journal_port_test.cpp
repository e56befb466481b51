// SPDX-License-Identifier: MIT
// What the panel reads of a journal, and the files that it makes of it.
#include "alarm_fixture.h"

#include "journal/journal.h"
#include "panel/alarms/journal_port.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace dx4::panel;
using namespace dx4::journal;

namespace {

/// Files take 64 bytes as long as this lives, as on a disk that is full.
class SmallFiles {
public:
    SmallFiles()
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit small = m_limit;
        small.rlim_cur = 64;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallFiles()
    {
        setrlimit(RLIMIT_FSIZE, &m_limit);
        static_cast<void>(std::signal(SIGXFSZ, m_handler));
    }
    SmallFiles(const SmallFiles &) = delete;
    SmallFiles &operator=(const SmallFiles &) = delete;

private:
    rlimit m_limit = {};
    void (*m_handler)(int);
};

class JournalPortTest : public ::testing::Test {
protected:
    /// Writes a journal of line "a": a fault came, a line went down, and the fault was
    /// acknowledged.
    void writeSome()
    {
        Trouble trouble;
        const auto journal = Journal::open(path, {}, &trouble);
        Event fault = historyEvent(0, EventKind::Fault, 3, "station 3: fault 2", panelNoon);
        fault.code = 2;
        Event down = historyEvent(0, EventKind::Line, 0, "line down: unplugged", panelNoon + 1);
        down.code = 1;
        Alarm alarm;
        alarm.key = { AlarmKind::Fault, 3, 2, {} };
        Event known = acknowledgement(alarm);
        for (Event *event : { &fault, &down, &known }) {
            event->line = QStringLiteral("a");
            event->start = 1;
        }
        ASSERT_TRUE(journal->write({ { fault, down, known }, {}, {} }, &trouble));
    }

    static Event acknowledgement(const Alarm &alarm);

    static void waitFor(const std::function<bool()> &isSo)
    {
        while (!isSo())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    QByteArray contentOf(const QString &file) const
    {
        QFile read(file);
        EXPECT_TRUE(read.open(QIODevice::ReadOnly));
        return read.readAll();
    }

    QTemporaryDir folder;
    QString path { folder.filePath(QStringLiteral("journal.sqlite")) };
    QString csv { folder.filePath(QStringLiteral("history.csv")) };
};

Event JournalPortTest::acknowledgement(const Alarm &alarm)
{
    Event event = historyEvent(0, EventKind::Acknowledgement, alarm.key.station,
                               "acknowledged by anna: station 3: fault 2", panelNoon + 2);
    event.before = static_cast<int>(EventKind::Fault);
    event.code = alarm.key.code;
    return event;
}

} // namespace

TEST_F(JournalPortTest, EventsAreReadOnAThreadAndTakenOnThisOne)
{
    writeSome();
    JournalDesk desk(path);
    std::optional<EventsRead> read;
    std::thread::id takenOn;

    readingWith(desk)({}, [&](const EventsRead &given) {
        read = given;
        takenOn = std::this_thread::get_id();
    });
    waitFor([&] { return read.has_value(); });

    ASSERT_EQ(read->events.size(), 3);
    EXPECT_EQ(read->trouble.toStdString(), "");
    EXPECT_EQ(read->events[2].text.toStdString(), "station 3: fault 2");
    EXPECT_EQ(takenOn, std::this_thread::get_id());
}

TEST_F(JournalPortTest, AJournalThatIsNotThereSaysSo)
{
    JournalDesk desk(path);
    std::optional<EventsRead> read;

    readingWith(desk)({}, [&](const EventsRead &given) { read = given; });
    waitFor([&] { return read.has_value(); });

    EXPECT_NE(read->trouble.toStdString(), "");
}

TEST_F(JournalPortTest, WithoutAJournalThatIsTold)
{
    JournalDesk desk { QString() };
    std::optional<EventsRead> read;

    readingWith(desk)({}, [&](const EventsRead &given) { read = given; });
    waitFor([&] { return read.has_value(); });

    EXPECT_EQ(read->trouble.toStdString(), "No journal is kept.");
}

TEST_F(JournalPortTest, AlarmsOfTheTimeBeforeArePutIntoTheWatch)
{
    writeSome();
    AlarmPanel under;
    JournalDesk desk(path);

    restoreAlarms(desk, under.watch, QStringLiteral("a"), panelNoon + 1000);
    waitFor([&] { return !under.watch.book().list().isEmpty(); });

    const Alarm *fault = under.watch.book().find({ AlarmKind::Fault, 3, 2, {} });
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(fault->state, AlarmState::Acknowledged);
    EXPECT_EQ(under.watch.book().find({ AlarmKind::Line, 0, 0, {} })->reason.toStdString(),
              "unplugged");
}

TEST_F(JournalPortTest, AnotherLineAndWhatIsOfThisRunAreLeftOut)
{
    writeSome();
    AlarmPanel under;
    JournalDesk desk(path);
    bool isRead = false;

    restoreAlarms(desk, under.watch, QStringLiteral("b"), panelNoon + 1000);
    restoreAlarms(desk, under.watch, QStringLiteral("a"), panelNoon);
    desk.ask([&](JournalReader *, const QString &) { return [&] { isRead = true; }; });
    waitFor([&] { return isRead; });

    EXPECT_TRUE(under.watch.book().list().isEmpty());
}

TEST_F(JournalPortTest, EventsAreSavedAsATable)
{
    writeSome();
    JournalDesk desk(path);
    std::optional<SaveEnd> end;
    EventQuery query;
    query.kinds = { EventKind::Line };

    savingWith(desk)(query, csv, false, [&](const SaveEnd &given) { end = given; });
    waitFor([&] { return end.has_value(); });

    EXPECT_EQ(end->kind, SaveEnd::Kind::Saved);
    EXPECT_EQ(contentOf(csv),
              "id,start,time,kind,line,station,type,address,code,before,after,text\n"
              "2,1,2026-03-01T12:00:00.001Z,line,a,,,,1,,,line down: unplugged\n");
}

TEST_F(JournalPortTest, AFileThatIsThereIsReplacedOnlyWhereThatIsAllowed)
{
    writeSome();
    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);
    QFile old(csv);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("mine");
    old.close();

    EXPECT_EQ(saveCsv(*reader, {}, csv, false).kind, SaveEnd::Kind::IsThere);
    EXPECT_EQ(contentOf(csv), "mine");

    EXPECT_EQ(saveCsv(*reader, {}, csv, true).kind, SaveEnd::Kind::Saved);
    EXPECT_EQ(contentOf(csv).left(8), "id,start");
}

TEST_F(JournalPortTest, AFolderThatIsNotThereFailsInWords)
{
    writeSome();
    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);

    const SaveEnd end =
        saveCsv(*reader, {}, folder.filePath(QStringLiteral("no/history.csv")), false);

    EXPECT_EQ(end.kind, SaveEnd::Kind::Failed);
    EXPECT_NE(end.error.toStdString(), "");
}

TEST_F(JournalPortTest, ADiskThatIsFullFailsAndTheOldFileStays)
{
    writeSome();
    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);
    ASSERT_EQ(saveCsv(*reader, {}, csv, false).kind, SaveEnd::Kind::Saved);
    const QByteArray old = contentOf(csv);
    SaveEnd end;
    {
        const SmallFiles limit;
        end = saveCsv(*reader, {}, csv, true);
    }

    EXPECT_EQ(end.kind, SaveEnd::Kind::Failed);
    EXPECT_NE(end.error.toStdString(), "");
    EXPECT_EQ(contentOf(csv), old);
}

TEST_F(JournalPortTest, NothingButAPlainFileIsReplaced)
{
    writeSome();
    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);

    EXPECT_EQ(saveCsv(*reader, {}, pipe, true).kind, SaveEnd::Kind::Failed);
    EXPECT_EQ(saveCsv(*reader, {}, folder.path(), true).kind, SaveEnd::Kind::Failed);
}

TEST_F(JournalPortTest, WhatWasAskedForIsDoneWhenTheDeskGoes)
{
    bool isDone = false;
    {
        JournalDesk desk { QString() };
        desk.ask([&](JournalReader *, const QString &) {
            isDone = true;
            return [] {};
        });
    }

    EXPECT_TRUE(isDone);
}
