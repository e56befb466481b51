// SPDX-License-Identifier: MIT
// A disk that is full, and has room again.
#include "full_disk.h"
#include "journal_fixture.h"

#include <QFile>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace dx4::journal;

namespace {

using FullDiskTest = JournalTest;

constexpr int noNamespaces = 77;

/// Writes until the disk is full.
///
/// @return batches that were taken
int fillUp(Journal &journal, Trouble *trouble)
{
    Event event = eventOf("");
    event.text = QString(1000, QLatin1Char('x'));
    int taken = 0;
    while (journal.write({ std::vector<Event>(10, event), {}, {} }, trouble))
        ++taken;
    return taken;
}

bool tell(const char *file, const QByteArray &text)
{
    QFile to(QString::fromLatin1(file));
    return to.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && to.write(text) == text.size();
}

/// Fills a file system of 1 MiB, makes room by removing another file and writes on. Gives the
/// number of the step that went wrong as an exit code.
int onASmallDisk(const QString &folder)
{
    const QByteArray place = QFile::encodeName(folder);
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 || !tell("/proc/self/setgroups", "deny")
        || !tell("/proc/self/uid_map", QByteArray("0 ") + QByteArray::number(user) + " 1")
        || !tell("/proc/self/gid_map", QByteArray("0 ") + QByteArray::number(group) + " 1")
        || mount("none", place.constData(), "tmpfs", 0, "size=1m") != 0)
        return noNamespaces;
    const QString path = folder + QStringLiteral("/journal.sqlite");
    QFile filler(folder + QStringLiteral("/filler"));
    if (!filler.open(QIODevice::WriteOnly) || filler.write(QByteArray(400'000, 'x')) < 0)
        return 1;
    filler.close();
    Trouble trouble;
    const auto journal = Journal::open(path, {}, &trouble);
    const int taken = journal ? fillUp(*journal, &trouble) : 0;
    if (taken == 0 || trouble.kind != Trouble::Kind::Full)
        return 2;
    filler.remove();
    if (!journal->write({ { eventOf("room again") }, {}, {} }, &trouble))
        return 3;
    Database database(path, Database::Access::Read, 1000);
    if (database.text(QStringLiteral("PRAGMA integrity_check")) != QStringLiteral("ok"))
        return 4;
    return database.number(QStringLiteral("SELECT count(*) FROM events")) == taken * 10 + 1 ? 0 : 5;
}

} // namespace

TEST_F(FullDiskTest, TakesNothingAndThenGoesOnOverASmallFileSystem)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(onASmallDisk(folder.path()));
    int status = 0;
    waitpid(child, &status, 0);

    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    if (code == noNamespaces)
        GTEST_SKIP() << "this system lets no test mount anything";
    EXPECT_EQ(code, 0);
}

TEST_F(FullDiskTest, LeavesWhatWasWrittenAndTheFileWhole)
{
    open();
    int taken = 0;
    {
        const FullDisk disk(300'000);
        taken = fillUp(*journal, &trouble);
    }
    const Trouble full = trouble;
    const qint64 kept = number("SELECT count(*) FROM events");

    EXPECT_TRUE(writeEvents({ eventOf("room again") }));

    EXPECT_NE(full.kind, Trouble::Kind::None);
    EXPECT_GT(taken, 0);
    EXPECT_EQ(kept, taken * 10);
    EXPECT_EQ(number("SELECT count(*) FROM events"), kept + 1);
    EXPECT_EQ(
        Database(path, Database::Access::Read, 1000).text(QStringLiteral("PRAGMA integrity_check")),
        QStringLiteral("ok"));
}
