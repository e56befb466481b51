// SPDX-License-Identifier: MIT
// Files that are no journal, are damaged, too new, held or not to be had.
#include "journal/schema.h"
#include "journal_fixture.h"

#include <QDir>
#include <QFile>
#include <QLockFile>

#include <sys/stat.h>
#include <unistd.h>

using namespace dx4::journal;

namespace {

using JournalFile = JournalTest;

/// Root may write everywhere: while this lives the process is nobody.
class WithoutRights {
public:
    WithoutRights()
    {
        if (geteuid() == 0) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    ~WithoutRights()
    {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    WithoutRights(const WithoutRights &) = delete;
    WithoutRights &operator=(const WithoutRights &) = delete;
};

void fill(const QString &path, const QByteArray &content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// Overwrites the middle of a file, which leaves its head as it was.
void damage(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadWrite));
    EXPECT_TRUE(file.seek(4096));
    const QByteArray junk(static_cast<int>(file.size()) - 4096, '\x5A');
    EXPECT_EQ(file.write(junk), junk.size());
}

} // namespace

TEST_F(JournalFile, IsMadeWhereThereIsNoneAndLeavesNothingElse)
{
    open();
    EXPECT_TRUE(writeEvents({ eventOf("x") }));

    journal.reset();

    EXPECT_EQ(files(), QStringList { QStringLiteral("journal.sqlite") });
    EXPECT_EQ(trouble.kind, Trouble::Kind::None);
    EXPECT_EQ(setAsideAs, QString());
}

TEST_F(JournalFile, MayHaveBlanksAndOtherLettersInItsName)
{
    QDir(folder.path()).mkdir(QStringLiteral("my plant \u00E4#?&;="));
    path = folder.filePath(QStringLiteral("my plant \u00E4#?&;=/the journal.sqlite"));

    open();
    EXPECT_TRUE(writeEvents({ eventOf("x") }));

    EXPECT_EQ(texts(), Texts { "x" });
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(JournalFile, IsAJournalOfThisVersion)
{
    open();

    EXPECT_EQ(number("PRAGMA user_version"), 1);
    EXPECT_EQ(number("PRAGMA application_id"), 0x6478346A);
}

TEST_F(JournalFile, OfANewerVersionIsRefusedAndStaysAsItIs)
{
    open();
    writeEvents({ eventOf("x") });
    journal.reset();
    execute("PRAGMA user_version = 2");
    const QByteArray before = contentOf(path);

    open();
    Trouble ofReader;
    const auto read = JournalReader::open(path, &ofReader);

    EXPECT_FALSE(journal);
    EXPECT_FALSE(read);
    EXPECT_EQ(trouble.kind, Trouble::Kind::Newer);
    EXPECT_EQ(trouble.text,
              path
                  + QStringLiteral(": is a journal of version 2; this program knows those up to 1 "
                                   "and leaves it as it is"));
    EXPECT_EQ(ofReader.text, trouble.text);
    EXPECT_EQ(contentOf(path), before);
    EXPECT_EQ(files().filter(QStringLiteral("damaged")), QStringList());
}

TEST_F(JournalFile, OfAnotherProgramIsRefusedAndStaysAsItIs)
{
    execute("CREATE TABLE recipes (id INTEGER)");
    const QByteArray before = contentOf(path);

    open();

    EXPECT_FALSE(journal);
    EXPECT_EQ(trouble.kind, Trouble::Kind::Foreign);
    EXPECT_EQ(trouble.text,
              path + QStringLiteral(": is a database of another program, no journal"));
    EXPECT_EQ(contentOf(path), before);
}

TEST_F(JournalFile, OfAnOlderVersionIsBroughtUpToDateWithWhatItHolds)
{
    const QVector<QStringList> first = {
        { QStringLiteral("CREATE TABLE kept (text TEXT)"),
          QStringLiteral("INSERT INTO kept VALUES ('old')") },
    };
    const QVector<QStringList> both = {
        first.constFirst(),
        { QStringLiteral("ALTER TABLE kept ADD COLUMN station INTEGER NOT NULL DEFAULT 3") },
    };
    Database database(path, Database::Access::Write, 1000);

    EXPECT_TRUE(bringUpToDate(database, first));
    EXPECT_EQ(database.number(QStringLiteral("PRAGMA user_version")), 1);
    EXPECT_TRUE(bringUpToDate(database, both));
    EXPECT_TRUE(bringUpToDate(database, both));

    EXPECT_EQ(database.number(QStringLiteral("PRAGMA user_version")), 2);
    EXPECT_EQ(database.number(QStringLiteral("SELECT station FROM kept WHERE text = 'old'")), 3);
    EXPECT_EQ(database.number(QStringLiteral("SELECT count(*) FROM kept")), 1);
}

TEST_F(JournalFile, StaysOfItsVersionWhereAStepFails)
{
    const QVector<QStringList> steps = {
        { QStringLiteral("CREATE TABLE kept (text TEXT)") },
        { QStringLiteral("CREATE TABLE more (text TEXT)"), QStringLiteral("CREATE nonsense") },
    };
    Database database(path, Database::Access::Write, 1000);
    EXPECT_TRUE(bringUpToDate(database, { steps.constFirst() }));

    EXPECT_FALSE(bringUpToDate(database, steps));

    EXPECT_EQ(database.trouble().text, path + QStringLiteral(": near \"nonsense\": syntax error"));
    EXPECT_EQ(database.number(QStringLiteral("PRAGMA user_version")), 1);
    EXPECT_EQ(database.number(QStringLiteral("SELECT count(*) FROM sqlite_master")), 1);
}

TEST_F(JournalFile, OfAnOlderVersionIsNotReadBeforeItIsBroughtUpToDate)
{
    execute("PRAGMA application_id = 1685599338");
    execute("CREATE TABLE events (id INTEGER)");

    const auto read = JournalReader::open(path, &trouble);

    EXPECT_FALSE(read);
    EXPECT_EQ(trouble.text,
              path
                  + QStringLiteral(": is a journal of an older version; a program that writes it "
                                   "brings it up to date"));
}

TEST_F(JournalFile, ThatIsEmptyIsFilledByWhoWritesAndRefusedToWhoReads)
{
    fill(path, {});

    const auto read = JournalReader::open(path, &trouble);
    const Trouble ofReader = trouble;
    open();

    EXPECT_FALSE(read);
    EXPECT_EQ(ofReader.text,
              path + QStringLiteral(": is empty; a program that writes it fills it"));
    EXPECT_TRUE(journal);
    EXPECT_EQ(setAsideAs, QString());
}

TEST_F(JournalFile, ThatIsNoDatabaseIsSetAside)
{
    fill(path, QByteArray(5000, 'x'));

    open();

    ASSERT_TRUE(journal);
    EXPECT_EQ(setAsideAs, path + QStringLiteral(".damaged-1"));
    EXPECT_EQ(contentOf(setAsideAs), QByteArray(5000, 'x'));
    EXPECT_TRUE(writeEvents({ eventOf("new") }));
    EXPECT_EQ(texts(), Texts { "new" });
}

TEST_F(JournalFile, ThatIsDamagedInTheMiddleIsSetAsideUnderAFreeName)
{
    open();
    writeEvents(std::vector<Event>(500, eventOf("old")));
    journal.reset();
    damage(path);
    const QByteArray damaged = contentOf(path);
    fill(path + QStringLiteral(".damaged-1"), "an earlier one");

    open();

    ASSERT_TRUE(journal);
    EXPECT_EQ(setAsideAs, path + QStringLiteral(".damaged-2"));
    EXPECT_EQ(contentOf(setAsideAs), damaged);
    EXPECT_EQ(contentOf(path + QStringLiteral(".damaged-1")), QByteArray("an earlier one"));
    EXPECT_EQ(texts(), Texts {});
}

TEST_F(JournalFile, WithAnIndexThatDoesNotFitItsTableIsSetAside)
{
    open();
    writeEvents({ eventOf("x"), eventOf("y") });
    journal.reset();
    {
        Database database(path, Database::Access::Write, 1000);
        database.run(QStringLiteral("PRAGMA writable_schema = ON"));
        database.run(QStringLiteral("UPDATE sqlite_master SET rootpage = (SELECT rootpage FROM "
                                    "sqlite_master WHERE name = 'wear') WHERE name = 'starts'"));
    }

    open();

    EXPECT_TRUE(journal);
    EXPECT_EQ(setAsideAs, path + QStringLiteral(".damaged-1"));
}

TEST_F(JournalFile, ThatIsDamagedStaysWhereItsFolderTakesNoOtherName)
{
    fill(path, QByteArray(5000, 'x'));
    chmod(QFile::encodeName(folder.path()).constData(), 0555);
    chmod(QFile::encodeName(path).constData(), 0666);
    {
        const WithoutRights nobody;
        open();
    }
    chmod(QFile::encodeName(folder.path()).constData(), 0700);

    EXPECT_FALSE(journal);
    EXPECT_EQ(trouble.text, path + QStringLiteral(": is damaged, and cannot be set aside"));
    EXPECT_EQ(contentOf(path), QByteArray(5000, 'x'));
}

TEST_F(JournalFile, InAFolderThatTakesNoFilesIsRefusedWithTheFolder)
{
    chmod(QFile::encodeName(folder.path()).constData(), 0555);
    {
        const WithoutRights nobody;
        open();
    }
    chmod(QFile::encodeName(folder.path()).constData(), 0700);

    EXPECT_FALSE(journal);
    EXPECT_EQ(trouble.kind, Trouble::Kind::Refused);
    EXPECT_EQ(trouble.text,
              QStringLiteral("%1: its folder %2 takes no new file").arg(path, folder.path()));
}

TEST_F(JournalFile, InNoFolderIsRefusedWithTheFolder)
{
    path = folder.filePath(QStringLiteral("none/journal.sqlite"));

    open();

    EXPECT_FALSE(journal);
    EXPECT_EQ(trouble.text,
              QStringLiteral("%1: there is no folder %2/none").arg(path, folder.path()));
}

TEST_F(JournalFile, ThatIsAFolderIsRefused)
{
    path = folder.path();

    open();

    EXPECT_FALSE(journal);
    EXPECT_EQ(trouble.text, path + QStringLiteral(": cannot be opened"));
}

TEST_F(JournalFile, ThatMayBeReadOnlyIsRefusedToWhoWrites)
{
    open();
    writeEvents({ eventOf("x") });
    journal.reset();
    chmod(QFile::encodeName(path).constData(), 0444);
    chmod(QFile::encodeName(folder.path()).constData(), 0777);
    {
        const WithoutRights nobody;
        open();
        if (journal) {
            EXPECT_FALSE(writeEvents({ eventOf("y") }));
            journal.reset();
        }
    }

    EXPECT_EQ(trouble.kind, Trouble::Kind::Refused);
    EXPECT_EQ(trouble.text, path + QStringLiteral(": may be read only"));
}

TEST_F(JournalFile, HasToBeNamedAsAFileIs)
{
    for (const char *name : { "", ":memory:" }) {
        path = QString::fromLatin1(name);

        open();

        EXPECT_FALSE(journal);
        EXPECT_EQ(trouble.kind, Trouble::Kind::Refused);
        EXPECT_EQ(trouble.text, path + QStringLiteral(": names no file"));
    }
}

TEST_F(JournalFile, ThatAnotherProgramHoldsTooLongIsToldInWordsAndTakesTheBatchAfterwards)
{
    JournalSettings settings;
    settings.patience = 1;
    open(settings);
    Database other(path, Database::Access::Write, 1);
    ASSERT_TRUE(other.run(QStringLiteral("BEGIN IMMEDIATE")));

    const bool isWritten = writeEvents({ eventOf("x") });
    const Trouble held = trouble;
    ASSERT_TRUE(other.run(QStringLiteral("COMMIT")));

    EXPECT_FALSE(isWritten);
    EXPECT_EQ(held.kind, Trouble::Kind::Busy);
    EXPECT_EQ(held.text,
              path + QStringLiteral(": another program has held it for longer than 0.001 s"));
    EXPECT_TRUE(writeEvents({ eventOf("x") }));
    EXPECT_EQ(texts(), Texts { "x" });
}

TEST_F(JournalFile, ThatAnotherProgramIsOpeningForTooLongIsToldInWords)
{
    QLockFile other(path + QStringLiteral(".lock"));
    ASSERT_TRUE(other.lock());
    JournalSettings settings;
    settings.patience = 1;

    open(settings);

    EXPECT_FALSE(journal);
    EXPECT_EQ(trouble.kind, Trouble::Kind::Busy);
    EXPECT_EQ(
        trouble.text,
        path + QStringLiteral(": another program has been opening it for longer than 0.001 s"));
}

TEST_F(JournalFile, IsWrittenByTwoProgramsInTurnsAndReadMeanwhile)
{
    open();
    Trouble ofOther;
    const auto other = Journal::open(path, {}, &ofOther);
    const auto read = reader();

    writeEvents({ eventOf("one") });
    other->write({ { eventOf("two") }, {}, {} }, &ofOther);
    writeEvents({ eventOf("three") });

    EXPECT_EQ(texts(), (Texts { "one", "two", "three" }));
    EXPECT_EQ(read->events({})->size(), 3);
    EXPECT_EQ(reader()->starts()->size(), 2);
    EXPECT_EQ(events().at(1).start, 2);
}

TEST_F(JournalFile, IsNotInPlaceOnceItWasMovedOrRemoved)
{
    open();
    const bool before = journal->isInPlace();

    QFile::rename(path, path + QStringLiteral(".old"));
    const bool moved = journal->isInPlace();
    fill(path, "another");

    EXPECT_TRUE(before);
    EXPECT_FALSE(moved);
    EXPECT_FALSE(journal->isInPlace());
}

TEST_F(JournalFile, ThatIsNotThereCannotBeRead)
{
    const auto read = JournalReader::open(path, &trouble);

    EXPECT_FALSE(read);
    EXPECT_EQ(trouble.text, path + QStringLiteral(": is not there"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(JournalFile, WhoseTablesAreGoneIsToldByEachQuestion)
{
    open();
    writeSamples({ sampleOf(1, noon) });
    const auto read = reader();
    execute("ALTER TABLE events RENAME TO gone_1");
    execute("ALTER TABLE series RENAME TO gone_2");
    execute("ALTER TABLE wear RENAME TO gone_3");
    execute("ALTER TABLE starts RENAME TO gone_4");

    EXPECT_FALSE(read->events({}));
    EXPECT_FALSE(read->series());
    EXPECT_FALSE(read->wear());
    EXPECT_FALSE(read->starts());
    EXPECT_FALSE(read->history({ seriesOf().at, { noon, noon + 1 }, 1000 }));
    EXPECT_EQ(read->trouble().text, path + QStringLiteral(": no such table: series"));
}
