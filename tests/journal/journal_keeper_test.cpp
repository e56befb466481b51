// SPDX-License-Identifier: MIT
// A keeper writes by itself, waits for nobody and goes on after trouble.
#include "full_disk.h"
#include "journal/journal_keeper.h"
#include "journal_fixture.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>

#include <functional>

using namespace dx4::journal;

namespace {

class KeeperTest : public JournalTest {
protected:
    KeeperTest()
    {
        settings.interval = 3'600'000; // a flush ends it
        settings.retry = 3'600'000;
        settings.clock = [this] { return now.load(); };
    }

    void start()
    {
        keeper = std::make_unique<JournalKeeper>(path, settings);
        QObject::connect(keeper.get(), &JournalKeeper::troubled, keeper.get(),
                         [this](const QString &why) { told.push_back(why.toStdString()); });
        QObject::connect(keeper.get(), &JournalKeeper::recovered, keeper.get(),
                         [this] { told.emplace_back("recovered"); });
    }

    void note(const char *text) { keeper->note(eventOf(text)); }

    static void waitFor(const std::function<bool()> &isSo)
    {
        while (!isSo())
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }

    /// What was told so far.
    Texts takeTold()
    {
        QCoreApplication::sendPostedEvents(keeper.get());
        return std::exchange(told, {});
    }

    std::atomic<Time> now { noon };
    KeeperSettings settings;
    std::unique_ptr<JournalKeeper> keeper;
    Texts told;
};

} // namespace

TEST_F(KeeperTest, KeepsWhatIsNotedWithItsTime)
{
    start();
    now += 3;
    note("x");

    EXPECT_TRUE(keeper->flush());

    EXPECT_EQ(texts(), Texts { "x" });
    EXPECT_EQ(events().constFirst().time, noon + 3);
    EXPECT_EQ(keeper->state().trouble, QString());
    EXPECT_EQ(keeper->state().waiting, 0);
    EXPECT_EQ(takeTold(), Texts {});
}

TEST_F(KeeperTest, WritesAfterItsIntervalByItself)
{
    settings.interval = 1;
    start();

    note("x");

    waitFor([this] { return keeper->state().waiting == 0; });
    EXPECT_TRUE(keeper->flush());
    EXPECT_EQ(texts(), Texts { "x" });
}

TEST_F(KeeperTest, WritesWhenABatchIsFull)
{
    settings.batchSize = 3;
    start();

    note("1");
    note("2");
    note("3");

    waitFor([this] { return keeper->state().waiting == 0; });
    EXPECT_TRUE(keeper->flush());
    EXPECT_EQ(texts(), (Texts { "1", "2", "3" }));
}

TEST_F(KeeperTest, WritesWhatIsLeftAtItsEndAndMarksIt)
{
    start();
    note("x");

    keeper.reset();

    EXPECT_EQ(files(), QStringList { QStringLiteral("journal.sqlite") });
    EXPECT_EQ(texts(), Texts { "x" });
    EXPECT_TRUE(reader()->starts()->constFirst().isEnded);
}

TEST_F(KeeperTest, WritesMoreThanABatchAtOnce)
{
    settings.batchSize = 2;
    start();

    for (const char *text : { "1", "2", "3", "4", "5" })
        note(text);

    EXPECT_TRUE(keeper->flush());
    EXPECT_EQ(texts(), (Texts { "1", "2", "3", "4", "5" }));
}

TEST_F(KeeperTest, SaysWhyItCannotWriteAndGoesOnWhenItCan)
{
    path = folder.filePath(QStringLiteral("later/journal.sqlite"));
    start();
    note("x");

    const bool isWritten = keeper->flush();
    const KeeperState state = keeper->state();
    const Texts before = takeTold();
    QDir(folder.path()).mkdir(QStringLiteral("later"));
    const bool isWrittenNow = keeper->flush();

    EXPECT_FALSE(isWritten);
    const QString why = QStringLiteral("%1: there is no folder %2/later").arg(path, folder.path());
    EXPECT_EQ(state.trouble, why);
    EXPECT_EQ(state.waiting, 1);
    EXPECT_EQ(before, Texts { why.toStdString() });
    EXPECT_TRUE(isWrittenNow);
    EXPECT_EQ(keeper->state().trouble, QString());
    EXPECT_EQ(takeTold(), Texts { "recovered" });
    EXPECT_EQ(texts(), Texts { "x" });
}

TEST_F(KeeperTest, GoesOnByItselfAfterAFullDiskAndSaysWhatItLost)
{
    settings.retry = 1;
    settings.mostEvents = 2;
    start();
    note("before");
    ASSERT_TRUE(keeper->flush());
    {
        const FullDisk disk(1);
        note("1");
        EXPECT_FALSE(keeper->flush());
        for (const char *text : { "2", "3", "4", "5" })
            note(text);
        EXPECT_FALSE(keeper->flush());
    }

    waitFor([this] { return !told.empty() && told.back() == "recovered"; });

    EXPECT_EQ(keeper->state().lostEvents, 2);
    EXPECT_EQ(keeper->state().trouble, QString());
    const Texts kept = texts();
    ASSERT_EQ(kept.size(), 5U);
    EXPECT_EQ(kept.at(0), "before");
    EXPECT_EQ(kept.at(1), "1");
    EXPECT_EQ(kept.at(2), "4");
    EXPECT_EQ(kept.at(3), "5");
    EXPECT_EQ(kept.at(4).find("2 events and 0 values could not be kept, the first of "
                              "2026-03-01T12:00:00Z: "
                              + path.toStdString() + ": "),
              0U);
    EXPECT_EQ(events().constFirst().kind, EventKind::Journal);
}

TEST_F(KeeperTest, SaysThatMoreCameThanCouldBeWritten)
{
    settings.mostEvents = 1;
    settings.batchSize = 10;
    start();
    ASSERT_TRUE(keeper->flush());

    note("1");
    note("2");

    EXPECT_TRUE(keeper->flush());
    EXPECT_EQ(texts(),
              (Texts { "2",
                       "1 events and 0 values could not be kept, the first of "
                       "2026-03-01T12:00:00Z: they came faster than they could be written" }));
}

TEST_F(KeeperTest, BeginsAnotherFileWhereItsOwnWasMovedAway)
{
    start();
    note("old");
    ASSERT_TRUE(keeper->flush());

    ASSERT_TRUE(QFile::rename(path, path + QStringLiteral(".old")));
    note("new");

    EXPECT_TRUE(keeper->flush());
    EXPECT_EQ(texts(), Texts { "new" });
    EXPECT_EQ(reader()->starts()->size(), 1);
}

TEST_F(KeeperTest, SetsAFileAsideThatIsFoundDamaged)
{
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(5000, 'x'));
    }
    start();
    ASSERT_TRUE(keeper->flush());
    note("new");

    EXPECT_TRUE(keeper->flush());

    EXPECT_EQ(
        texts(),
        (Texts { "the journal was damaged; it is kept as " + path.toStdString() + ".damaged-1",
                 "new" }));
    EXPECT_EQ(takeTold(), Texts {});
}

TEST_F(KeeperTest, SetsAFileAsideThatGetsDamagedWhileItIsWritten)
{
    start();
    for (int i = 0; i < 200; ++i)
        note("old");
    ASSERT_TRUE(keeper->flush());
    execute("PRAGMA wal_checkpoint(TRUNCATE)");
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(4096));
        file.write(QByteArray(static_cast<int>(file.size()) - 4096, '\x5A'));
    }
    {
        Database other(path, Database::Access::Write, 1000);
        other.run(QStringLiteral("PRAGMA user_version = 1")); // the keeper reads the file anew
    }

    note("new");

    EXPECT_TRUE(keeper->flush());
    EXPECT_EQ(texts().back(),
              "the journal was damaged; it is kept as " + path.toStdString() + ".damaged-1");
    EXPECT_EQ(texts().front(), "new");
}

TEST_F(KeeperTest, LeavesANewerFileAloneAndSaysSo)
{
    open();
    journal.reset();
    execute("PRAGMA user_version = 9");
    start();
    note("x");

    EXPECT_FALSE(keeper->flush());

    EXPECT_EQ(keeper->state().trouble,
              path
                  + QStringLiteral(": is a journal of version 9; this program knows those up to 1 "
                                   "and leaves it as it is"));
    keeper.reset();
    EXPECT_EQ(files(), QStringList { QStringLiteral("journal.sqlite") });
}

TEST_F(KeeperTest, HasAClockOfItsOwn)
{
    settings.clock = nullptr;
    const Time before = QDateTime::currentMSecsSinceEpoch();
    start();
    note("x");

    EXPECT_TRUE(keeper->flush());

    EXPECT_GE(events().constFirst().time, before);
    EXPECT_LE(events().constFirst().time, QDateTime::currentMSecsSinceEpoch());
}
