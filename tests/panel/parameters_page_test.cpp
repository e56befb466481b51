// SPDX-License-Identifier: MIT
// The page of the parameters under a finger.
#include "parameters_fixture.h"
#include "widget_walk.h"

#include "panel/parameters/detail_sheet.h"
#include "panel/parameters/line_pager.h"

#include <QFile>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::seconds;

namespace {

std::string textOf(const ParametersPanel &made, const char *name)
{
    const auto *label = made.page->findChild<QLabel *>(QLatin1String(name));
    return label && label->isVisible() ? label->text().toStdString() : "none";
}

std::string linesOf(const ParametersPanel &made)
{
    for (const LinePager *pager : made.page->findChildren<LinePager *>()) {
        if (pager->isVisible())
            return pager->lines().join(QLatin1Char('\n')).toStdString();
    }
    return "none";
}

ParameterView *viewOf(const ParametersPanel &made)
{
    return made.page->findChild<ParameterView *>();
}

QPoint middleOf(const ParametersPanel &made, int row, int column)
{
    return viewOf(made)->visualRect(made.page->table().index(row, column)).center();
}

void tap(ParametersPanel &made, int row, int column)
{
    QTest::mouseClick(viewOf(made)->viewport(), Qt::LeftButton, {}, middleOf(made, row, column));
    made.show();
}

/// Everything that a picture of this window must hold.
void expectSound(ParametersPanel &made, const char *state)
{
    QStringList wrong = wrongTargets(made.panel.window);
    wrong += wrongStop(made.panel.window);
    wrong += cutTexts(made.panel.window);
    EXPECT_EQ(wrong.join(QLatin1Char('\n')).toStdString(), "") << state;
}

void tickTwo(ParametersPanel &made)
{
    made.page->book().tick({ at(8, 2), at(10, 13) }, true);
    made.show();
}

/// Counts how often a widget is painted.
class Paints : public QObject {
public:
    explicit Paints(QWidget *widget) { widget->installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

class ParametersAtEverySize : public ::testing::TestWithParam<QSize> { };

} // namespace

TEST_P(ParametersAtEverySize, EveryStateHasItsTargetsApartAndNoTextCut)
{
    ParametersPanel made(GetParam(), true);
    expectSound(made, "not read");

    made.click("Read");
    expectSound(made, "reading");

    made.page->book().noteBackedUp(1, factorySet(1), {});
    made.compare(2);
    expectSound(made, "compared");

    tickTwo(made);
    made.click("Apply 2...");
    expectSound(made, "asked to write");
    made.standing = Standing::Unknown;
    made.show();
    expectSound(made, "refused");
    made.click("Cancel");

    made.click("Save...");
    expectSound(made, "asked to save");
    made.click("Cancel");

    made.click("Find...");
    expectSound(made, "searching");
    made.click("Show all");

    tap(made, 3, ParameterTable::Number);
    expectSound(made, "one parameter");
    made.click("Close");

    QTest::mouseClick(made.page->findChild<QAbstractButton *>(QStringLiteral("side 0")),
                      Qt::LeftButton);
    made.show();
    expectSound(made, "choosing a side");
}

INSTANTIATE_TEST_SUITE_P(Page, ParametersAtEverySize,
                         ::testing::Values(QSize(800, 480), QSize(1280, 800), QSize(1920, 1080)));

TEST(ParametersPage, RowsAreHighEnoughForAFinger)
{
    ParametersPanel made;
    made.compare();

    EXPECT_EQ(viewOf(made)->rowHeight(0), 48);
    EXPECT_GE(viewOf(made)->viewport()->height() / 48, 4);
}

TEST(ParametersPage, ATapOnATickMarksARowAndATapBesideItOpensIt)
{
    ParametersPanel made;
    made.compare();

    tap(made, 3, ParameterTable::Tick);
    EXPECT_TRUE(made.page->book().isTicked(at(8, 2)));
    ASSERT_NE(made.button("Apply 1..."), nullptr);

    tap(made, 3, ParameterTable::Tick);
    EXPECT_FALSE(made.page->book().isTicked(at(8, 2)));

    tap(made, 3, ParameterTable::Name);
    EXPECT_FALSE(made.page->book().isTicked(at(8, 2)));
    EXPECT_TRUE(made.page->findChild<DetailSheet *>()->isVisible());
}

TEST(ParametersPage, AFingerThatDragsScrollsAndTicksNothing)
{
    ParametersPanel made;
    made.compare();
    const QPoint from = middleOf(made, 3, ParameterTable::Tick);
    QWidget *port = viewOf(made)->viewport();

    QTest::mousePress(port, Qt::LeftButton, {}, from);
    const QPoint to = from - QPoint(0, 110);
    QMouseEvent move(QEvent::MouseMove, to, port->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(port, &move);
    QTest::mouseRelease(port, Qt::LeftButton, {}, from - QPoint(0, 110));

    EXPECT_EQ(viewOf(made)->verticalScrollBar()->value(), 2);
    EXPECT_EQ(made.page->book().ticked().values.size(), 0);
}

TEST(ParametersPage, StepsMoveByAPage)
{
    ParametersPanel made;
    made.compare();
    EXPECT_FALSE(made.button("Up")->isEnabled());

    made.click("Down");

    EXPECT_GT(viewOf(made)->verticalScrollBar()->value(), 0);
    EXPECT_TRUE(made.button("Up")->isEnabled());
    EXPECT_FALSE(made.button("Down")->isEnabled());
}

TEST(ParametersPage, KeysTickAndOpenARow)
{
    ParametersPanel made;
    made.compare();
    viewOf(made)->setCurrentIndex(made.page->table().index(3, ParameterTable::Number));

    QTest::keyClick(viewOf(made), Qt::Key_Space);
    EXPECT_TRUE(made.page->book().isTicked(at(8, 2)));

    QTest::keyClick(viewOf(made), Qt::Key_Return);
    EXPECT_TRUE(made.page->findChild<DetailSheet *>()->isVisible());
}

TEST(ParametersPage, NothingIsWrittenBeforeTheButtonWasHeld)
{
    ParametersPanel made;
    made.compare();
    made.click("Tick all");
    made.click("Apply 5...");
    EXPECT_EQ(textOf(made, "what"),
              "Write 5 registers from drive.txt (station 1)\n"
              "to Feed pump (station 1)?");

    made.click("Hold to write 5 registers");
    EXPECT_EQ(made.jobs.restores.size(), 0U);

    made.hold("Hold to write 5 registers");
    ASSERT_EQ(made.jobs.restores.size(), 1U);
    EXPECT_EQ(made.jobs.restores[0].station, 1);
    EXPECT_EQ(made.jobs.restores[0].set.values.size(), 5);
    EXPECT_EQ(textOf(made, "what"), "Writing to Feed pump (station 1).\nIt waits for its turn.");
}

TEST(ParametersPage, AMotorThatRunsIsNotWrittenTo)
{
    ParametersPanel made;
    made.compare();
    tickTwo(made);
    made.click("Apply 2...");
    EXPECT_TRUE(made.button("Hold to write 2 registers")->isEnabled());

    made.standing = Standing::Runs;
    made.show();

    EXPECT_FALSE(made.button("Hold to write 2 registers")->isEnabled());
    EXPECT_EQ(textOf(made, "refusal"), "The motor of Feed pump runs, or may run. Stop it first.");
    made.hold("Hold to write 2 registers");
    EXPECT_EQ(made.jobs.restores.size(), 0U);
}

TEST(ParametersPage, AFileOfAnotherStationWantsItsOwnAgreement)
{
    ParametersPanel made;
    made.compare(2);
    tickTwo(made);

    made.click("Apply 2...");
    EXPECT_EQ(textOf(made, "what"),
              "Write 2 registers from drive.txt (station 2)\n"
              "to Feed pump (station 1)?");
    made.hold("Hold to write 2 registers");
    EXPECT_EQ(made.jobs.restores.size(), 0U);

    made.click("The values are those of station 2. Write them to station 1 all the same");
    made.hold("Hold to write 2 registers");
    EXPECT_EQ(made.jobs.restores.size(), 1U);
}

TEST(ParametersPage, AnAgreementIsForOneWriteAlone)
{
    ParametersPanel made;
    made.compare(2);
    tickTwo(made);
    made.click("Apply 2...");
    made.click("The values are those of station 2. Write them to station 1 all the same");
    made.click("Cancel");

    made.click("Apply 2...");

    EXPECT_FALSE(made.button("Hold to write 2 registers")->isEnabled());
}

TEST(ParametersPage, TheReportStaysUntilItIsClosed)
{
    ParametersPanel made;
    made.compare();
    tickTwo(made);
    made.click("Apply 2...");
    made.hold("Hold to write 2 registers");
    RestoreReport report;
    report.compared = 2;
    report.written = 2;
    report.verified = 2;

    made.page->restore().noteRestored(501, report);
    made.show();

    EXPECT_EQ(textOf(made, "what"), "Feed pump holds every value.");
    EXPECT_EQ(linesOf(made),
              "2 compared, 2 written, 2 verified\n"
              "0 refused, 0 still different, 0 not looked at");
    made.click("Close");
    EXPECT_TRUE(made.page->book().isReading());
}

TEST(ParametersPage, AReportThatNobodyWaitedForOpensByItselfOnce)
{
    ParametersPanel made;
    made.compare();
    tickTwo(made);
    made.click("Apply 2...");
    made.hold("Hold to write 2 registers");
    made.click("Close");
    ASSERT_NE(made.button("Writing..."), nullptr);

    RestoreReport report;
    report.unseen = 2;
    report.interrupted = QStringLiteral("station 1 does not answer");
    made.page->restore().noteRestored(501, report);
    made.show();
    EXPECT_EQ(textOf(made, "what"), "Feed pump was not seen to hold every value.");

    made.click("Close");
    EXPECT_EQ(textOf(made, "what"), "none");
}

TEST(ParametersPage, NothingIsPaintedWhereNothingHasChanged)
{
    ParametersPanel made;
    made.compare();
    made.show();
    Paints paints(viewOf(made)->viewport());

    made.show();
    EXPECT_EQ(paints.count, 0);

    made.page->book().tick({ at(8, 2) }, true);
    made.show();
    EXPECT_GT(paints.count, 0);
}

TEST(ParametersPage, ANoteOnTopOfAQuestionLeavesThePageBelowAlone)
{
    ParametersPanel made;
    made.compare();
    tickTwo(made);
    made.page->book().read();
    made.click("Apply 2...");

    made.page->book().noteBackedUp(2, {}, QStringLiteral("station 1 does not answer"));
    made.show();
    made.click("Close");

    EXPECT_FALSE(viewOf(made)->isEnabled());
    EXPECT_EQ(textOf(made, "what").substr(0, 17), "Write 2 registers");
}

TEST(ParametersPage, AReadingIsCancelledByTheSameButton)
{
    ParametersPanel made;

    made.click("Read");
    EXPECT_EQ(made.jobs.backups.size(), 1U);
    EXPECT_EQ(made.button("Read"), nullptr);

    made.click("Cancel");
    EXPECT_EQ(made.jobs.cancelled, std::vector<int> { 1 });
}

TEST(ParametersPage, AReadingThatBreaksOffIsToldAndLeavesTheStopInReach)
{
    ParametersPanel made;
    made.click("Read");

    made.page->book().noteBackedUp(1, {}, QStringLiteral("station 1 does not answer"));
    made.show();

    EXPECT_EQ(linesOf(made), "Feed pump was not read to its end: station 1 does not answer");
    expectSound(made, "told");
}

TEST(ParametersPage, WhatIsTypedOnTheKeysIsLookedForInAllGroups)
{
    ParametersPanel made;
    made.click("F 8");
    EXPECT_EQ(made.page->table().rowCount(), 18);

    made.click("Find...");
    made.click("c");
    made.click(".");
    made.click("1");
    EXPECT_EQ(made.page->table().rowCount(), 5);
    made.click("Show these");

    ASSERT_NE(made.button("Find: c.1"), nullptr);
    EXPECT_TRUE(made.button("All")->isChecked());

    made.click("F 8");
    EXPECT_EQ(made.page->table().rowCount(), 18);
}

TEST(ParametersPage, AFileIsChosenInItsFolder)
{
    ParametersPanel made;
    saveParameterSet(made.folder.filePath(QStringLiteral("old.txt")), tunedSet(1), nullptr);

    QTest::mouseClick(made.page->findChild<QAbstractButton *>(QStringLiteral("side 0")),
                      Qt::LeftButton);
    made.show();
    made.click("File...");
    made.click("old.txt");

    EXPECT_EQ(made.page->book().side(ParameterBook::First).name.toStdString(), "old.txt");
    EXPECT_EQ(made.page->book().side(ParameterBook::First).set, tunedSet(1));
}

TEST(ParametersPage, WhatWasReadIsSavedUnderTheNameOfItsStation)
{
    ParametersPanel made;
    made.compare();

    made.click("Save...");
    made.click("Save");

    QFile file(made.folder.filePath(QStringLiteral("station-1.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), toText(factorySet(1)).toStdString());
    EXPECT_TRUE(made.page->book().side(ParameterBook::Second).isSaved);
}

TEST(ParametersPage, AnotherStationsFileIsReplacedByASecondPress)
{
    ParametersPanel made;
    const QString path = made.folder.filePath(QStringLiteral("station-1.txt"));
    saveParameterSet(path, tunedSet(2), nullptr);
    made.compare();

    made.click("Save...");
    made.click("Save");
    EXPECT_EQ(loadParameterSet(path, nullptr)->station, 2);
    EXPECT_EQ(textOf(made, "result"),
              "station-1.txt holds the parameters of station 2. They would be replaced by those "
              "of station 1.");

    made.click("Replace it");
    EXPECT_EQ(loadParameterSet(path, nullptr)->station, 1);
}

TEST(ParametersPage, AParameterListsWhatWasWrittenToIt)
{
    ParametersPanel made({ 800, 480 }, true);
    made.compare();
    made.panel.made.advance(seconds(10));
    made.show();

    tap(made, 3, ParameterTable::Written);

    const std::string lines = linesOf(made);
    EXPECT_NE(lines.find("100 to 120, confirmed"), std::string::npos) << lines;
    EXPECT_NE(lines.find("50 to 80, confirmed"), std::string::npos) << lines;
    EXPECT_EQ(lines.find("1 to 2"), std::string::npos) << lines;
}

TEST(ParametersPage, WithoutAJournalTheColumnIsLeftOut)
{
    ParametersPanel made;

    EXPECT_EQ(made.page->table().columnCount(), 6);
}

TEST(ParametersPage, EveryButtonHasANameForScreenReaders)
{
    const ParametersPanel made;

    for (const QAbstractButton *found : made.page->findChildren<FlatButton *>())
        EXPECT_FALSE(found->text().isEmpty() && found->accessibleName().isEmpty())
            << found->objectName().toStdString();
}
