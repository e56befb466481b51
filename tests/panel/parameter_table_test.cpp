// SPDX-License-Identifier: MIT
// The rows of the parameters that are looked at.
#include "parameters_fixture.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::seconds;
using Mode = QAbstractItemModelTester::FailureReportingMode;

namespace {

/// "8.2|acceleration time|12.0 s|0.2 s|differs" of each row.
std::string rows(const ParameterTable &table)
{
    QStringList texts;
    for (int row = 0; row < table.rowCount(); ++row) {
        QStringList cells;
        for (int column = ParameterTable::Number; column < table.columnCount(); ++column)
            cells.append(table.data(table.index(row, column), Qt::DisplayRole).toString());
        texts.append(cells.join(QLatin1Char('|')));
    }
    return texts.join(QLatin1Char('\n')).toStdString();
}

QVariant tickOf(const ParameterTable &table, int row)
{
    return table.data(table.index(row, ParameterTable::Tick), Qt::CheckStateRole);
}

} // namespace

TEST(ParameterTable, ShowsAllOfOneDriveWithDashesForWhatIsNotRead)
{
    MadeUpParameters made;
    const QAbstractItemModelTester tester(&made.table, Mode::Fatal);

    EXPECT_EQ(made.table.rowCount(), 203);
    made.table.setGroup(10);

    EXPECT_EQ(made.table.rowCount(), 14);
    EXPECT_EQ(made.table.data(made.table.index(13, ParameterTable::Second), Qt::DisplayRole)
                  .toString()
                  .toStdString(),
              "---");
}

TEST(ParameterTable, ShowsOnlyWhatDiffersUnlessMoreIsWanted)
{
    MadeUpParameters made;
    const QAbstractItemModelTester tester(&made.table, Mode::Fatal);

    made.compare();

    EXPECT_EQ(rows(made.table),
              "0.1|highest frequency|50.00 Hz|0.01 Hz|differs\n"
              "1.3||12|3|differs\n"
              "4.28||7|28|differs\n"
              "8.2|acceleration time|12.0 s|0.2 s|differs\n"
              "8.4||refused|4|only right\n"
              "8.5||refused|5|only right\n"
              "c.13|brake chopper level|680 V|13 V|differs");

    made.table.setOnlyDifferences(false);
    EXPECT_EQ(made.table.rowCount(), 203);
}

TEST(ParameterTable, FindsByNumberByNameAndByRegister)
{
    MadeUpParameters made;
    const QAbstractItemModelTester tester(&made.table, Mode::Fatal);

    made.table.setSearch(QStringLiteral(" F 4.2 "));
    EXPECT_EQ(made.table.rowCount(), 10);
    EXPECT_EQ(made.table.addressOf(0), at(4, 2));
    EXPECT_EQ(made.table.addressOf(1), at(4, 20));

    made.table.setSearch(QStringLiteral("ACCEL"));
    ASSERT_EQ(made.table.rowCount(), 1);
    EXPECT_EQ(made.table.addressOf(0), at(8, 2));

    made.table.setSearch(QStringLiteral("0xfc0d"));
    ASSERT_EQ(made.table.rowCount(), 1);
    EXPECT_EQ(made.table.addressOf(0), at(10, 13));

    made.table.setSearch(QStringLiteral("zzz"));
    EXPECT_EQ(made.table.rowCount(), 0);
}

TEST(ParameterTable, ATickIsAboutWritingAndMarksTheRow)
{
    MadeUpParameters made;
    const QAbstractItemModelTester tester(&made.table, Mode::Fatal);
    made.compare();
    EXPECT_EQ(tickOf(made.table, 3), Qt::Unchecked);
    EXPECT_FALSE(tickOf(made.table, 4).isValid());

    EXPECT_TRUE(made.table.setData(made.table.index(3, ParameterTable::Tick), Qt::Checked,
                                   Qt::CheckStateRole));
    EXPECT_FALSE(made.table.setData(made.table.index(4, ParameterTable::Tick), Qt::Checked,
                                    Qt::CheckStateRole));

    EXPECT_EQ(tickOf(made.table, 3), Qt::Checked);
    EXPECT_EQ(made.table.data(made.table.index(3, ParameterTable::Class), Qt::DisplayRole)
                  .toString()
                  .toStdString(),
              "to write");
    EXPECT_TRUE(made.table.data(made.table.index(3, 0), ParameterTable::PendingRole).toBool());
    EXPECT_EQ(made.book.ticked().values.size(), 1);
}

TEST(ParameterTable, AllRowsThatAreShownAreTickedTogether)
{
    MadeUpParameters made;
    made.compare();
    made.table.setGroup(8);
    EXPECT_EQ(made.table.tickable(), 1);

    made.table.tickAll(true);
    EXPECT_TRUE(made.table.areAllTicked());
    EXPECT_EQ(made.book.ticked().values.size(), 1);

    made.table.setGroup(ParameterTable::allGroups);
    EXPECT_FALSE(made.table.areAllTicked());
    made.table.tickAll(true);
    EXPECT_EQ(made.book.ticked().values.size(), 5);

    made.table.tickAll(false);
    EXPECT_EQ(made.book.ticked().values.size(), 0);
}

TEST(ParameterTable, ValuesOfADriveTurnOldAndAreNeverNewAgainByThemselves)
{
    MadeUpParameters made;
    made.compare();
    made.table.look();
    const QModelIndex held = made.table.index(0, ParameterTable::Second);
    EXPECT_FALSE(made.table.data(held, ParameterTable::OldRole).toBool());

    int changes = 0;
    QObject::connect(&made.table, &ParameterTable::dataChanged, [&] { ++changes; });
    made.made.advance(seconds(5));
    made.table.look();
    made.table.look();

    EXPECT_TRUE(made.table.data(held, ParameterTable::OldRole).toBool());
    EXPECT_EQ(changes, 1);
}

TEST(ParameterTable, HasAColumnOfWritesWhereThereIsAJournal)
{
    MadeUpParameters made(true);
    const QAbstractItemModelTester tester(&made.table, Mode::Fatal);
    made.compare();
    EXPECT_EQ(made.table.data(made.table.index(3, ParameterTable::Written), Qt::DisplayRole)
                  .toString()
                  .toStdString(),
              "---");

    made.journal.refresh();

    EXPECT_EQ(made.table.columnCount(), 7);
    EXPECT_EQ(made.table.data(made.table.index(3, ParameterTable::Written), Qt::DisplayRole)
                  .toString()
                  .toStdString(),
              "3");
}

TEST(ParameterTable, SaysARowInOneLine)
{
    MadeUpParameters made;
    made.compare();

    EXPECT_EQ(
        made.table.data(made.table.index(3, 0), Qt::AccessibleTextRole).toString().toStdString(),
        "F 8.2, acceleration time, 12.0 s, 0.2 s, differs");
}

TEST(ParameterTable, RowsStayInPlaceWhenOnlyTheirValuesChange)
{
    MadeUpParameters made;
    made.compare();
    int resets = 0;
    QObject::connect(&made.table, &ParameterTable::modelReset, [&] { ++resets; });

    made.book.tick({ at(8, 2) }, true);
    made.book.noteProgress(9, 1, 2);

    EXPECT_EQ(resets, 0);
}
