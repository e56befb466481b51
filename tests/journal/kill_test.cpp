// SPDX-License-Identifier: MIT
// A program that is killed at any moment leaves a whole file with all that was taken.
#include "kill_test.h"

#include "child_process.h"
#include "journal_fixture.h"

#include <QCoreApplication>

#include <csignal>
#include <iostream>
#include <random>

using namespace dx4::journal;

namespace {

using KilledWriter = JournalTest;

constexpr int rounds = 20;

qint64 newestNumber(const QString &path)
{
    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);
    const auto events = reader ? reader->events({}) : std::nullopt;
    return events && !events->isEmpty() ? events->constFirst().text.toLongLong() : 0;
}

/// Some time that is not the same each round.
void dawdle(int turns)
{
    for (volatile int i = 0; i < turns; i = i + 1) { }
}

} // namespace

int writeUntilKilled(const QString &path)
{
    Trouble trouble;
    const auto journal = Journal::open(path, {}, &trouble);
    if (!journal)
        return 1;
    for (qint64 number = newestNumber(path) + 1;; ++number) {
        Event event = eventOf("", noon + number * 1000);
        event.text = QString::number(number);
        const Sample sample = sampleOf(static_cast<int>(number), noon + number * 1000);
        if (!journal->write({ { event }, { sample }, {} }, &trouble))
            return 2;
        std::cout << number << std::endl;
    }
}

TEST_F(KilledWriter, LosesNoBatchThatWasTakenAndLeavesAWholeFile)
{
    const unsigned seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::string program = QCoreApplication::applicationFilePath().toStdString();
    qint64 written = 0;

    for (int round = 0; round < rounds; ++round) {
        ChildProcess child({ program, "--write-until-killed", path.toStdString() });
        qint64 taken = 0;
        const int wanted = static_cast<int>(random() % 12) + 1;
        for (int i = 0; i < wanted; ++i)
            taken = std::stoll(child.readLine());
        dawdle(static_cast<int>(random() % 1'000'000));
        child.signal(SIGKILL);
        child.wait();

        Database database(path, Database::Access::Write, 1000);
        ASSERT_EQ(database.text(QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
        written = newestNumber(path);
        ASSERT_GE(written, taken);
        ASSERT_EQ(number("SELECT count(*) FROM events"), written);
        const auto history =
            reader()->history({ seriesOf().at, { noon, noon + 1'800'000'000 }, 1 });
        qint64 samples = 0;
        for (const HistoryPoint &point : history->points)
            samples += point.count;
        ASSERT_EQ(samples, written);
        ASSERT_EQ(history->points.constLast().highest, written);
    }

    EXPECT_GE(written, rounds);
    EXPECT_EQ(files().filter(QStringLiteral("damaged")), QStringList());
}
