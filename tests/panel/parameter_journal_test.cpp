// SPDX-License-Identifier: MIT
// How often parameters were written, out of the journal.
#include "parameters_fixture.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;

TEST(ParameterJournal, CountsTheWritesOfEachParameter)
{
    MadeUpParameters made(true);
    EXPECT_EQ(made.journal.writes(1, at(8, 2)), std::nullopt);

    made.journal.refresh();

    EXPECT_EQ(made.journal.writes(1, at(8, 2)), 3);
    EXPECT_EQ(made.journal.writes(2, at(0, 1)), 1);
    EXPECT_EQ(made.journal.writes(1, at(0, 1)), 0);
    EXPECT_EQ(made.journal.trouble().toStdString(), "");
}

TEST(ParameterJournal, ListsTheWritesOfOneTheNewestFirst)
{
    MadeUpParameters made(true);
    QVector<ParameterWrite> writes;
    QObject::connect(&made.journal, &ParameterJournal::listed,
                     [&](int, int, const QVector<ParameterWrite> &listed) { writes = listed; });

    made.journal.list(1, at(8, 2));

    ASSERT_EQ(writes.size(), 3);
    EXPECT_EQ(writes.at(0).before, 100);
    EXPECT_EQ(writes.at(0).after, 120);
    EXPECT_EQ(writes.at(2).before, 50);
    EXPECT_EQ(writes.at(2).time, 1'772'366'400'000);
}

TEST(ParameterJournal, IsReadOnAThreadOfItsOwn)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("journal.sqlite"));
    writeJournal(path);
    Background background;
    ParameterJournal journal(background.runner(), { path, QStringLiteral("main") });

    journal.refresh();
    EXPECT_EQ(journal.writes(1, at(8, 2)), std::nullopt);

    ASSERT_TRUE(QTest::qWaitFor([&] { return journal.writes(1, at(8, 2)).has_value(); }));
    EXPECT_EQ(journal.writes(1, at(8, 2)), 3);
}

TEST(ParameterJournal, SaysWhyItCannotBeRead)
{
    const QTemporaryDir folder;
    ParameterJournal journal(
        [](const Work &work) { work()(); },
        { folder.filePath(QStringLiteral("none.sqlite")), QStringLiteral("main") });

    journal.refresh();

    EXPECT_EQ(journal.writes(1, at(8, 2)), std::nullopt);
    EXPECT_NE(journal.trouble().toStdString(), "");
}

TEST(ParameterJournal, IsLeftOutWithoutAFile)
{
    MadeUpParameters made;

    made.journal.refresh();

    EXPECT_FALSE(made.journal.isThere());
    EXPECT_EQ(made.table.columnCount(), 6);
}
