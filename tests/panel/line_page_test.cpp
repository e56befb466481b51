// SPDX-License-Identifier: MIT
// The page of the line: in reach of a finger, nothing cut, and what its buttons do.
#include "made_up_view.h"
#include "widget_walk.h"

#include "panel/widgets/look.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

using namespace dx4::panel;
using namespace dx4::host;
using std::chrono::seconds;

namespace {

std::string lines(const QStringList &texts)
{
    return texts.join(QLatin1Char('\n')).toStdString();
}

FlatButton *button(MadeUpLinePage &made, const char *text)
{
    const auto buttons = made.page->findChildren<FlatButton *>();
    for (FlatButton *found : buttons) {
        if (found->isVisible() && found->text() == QLatin1String(text))
            return found;
    }
    return nullptr;
}

void click(MadeUpLinePage &made, const char *text)
{
    FlatButton *found = button(made, text);
    ASSERT_NE(found, nullptr) << text;
    found->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    made.show();
}

QString fileOf(MadeUpLinePage &made)
{
    return made.page->findChild<QLineEdit *>(QStringLiteral("file"))->text();
}

void setFile(MadeUpLinePage &made, const QString &file)
{
    made.page->findChild<QLineEdit *>(QStringLiteral("file"))->setText(file);
}

/// Cells and headings that need more room than they have.
QStringList cutCells(const QTableView &table)
{
    QStringList cut;
    const QFontMetrics head(table.horizontalHeader()->font());
    int width = 0;
    for (int column = 0; column < table.model()->columnCount(); ++column) {
        const int room = table.columnWidth(column) - 6;
        width += table.columnWidth(column);
        const QStringList headings = table.model()
                                         ->headerData(column, Qt::Horizontal, Qt::DisplayRole)
                                         .toString()
                                         .split(QLatin1Char('\n'));
        for (const QString &text : headings) {
            if (head.horizontalAdvance(text) > room)
                cut.append(text);
        }
        for (int row = 0; row < table.model()->rowCount(); ++row) {
            const QString text = table.model()->index(row, column).data().toString();
            if (table.fontMetrics().horizontalAdvance(text) > room)
                cut.append(text);
        }
    }
    if (width > table.viewport()->width())
        cut.append(QStringLiteral("the table"));
    return cut;
}

class EverySizeOfLine : public ::testing::TestWithParam<QSize> { };

} // namespace

TEST_P(EverySizeOfLine, EachViewIsInReachAndWhole)
{
    for (const auto view : { LinePage::Counters, LinePage::Answers, LinePage::Frames }) {
        MadeUpLinePage made(3, GetParam());
        playBadCable(made);
        made.page->open(view);
        made.show();

        EXPECT_EQ(lines(wrongTargets(made.panel.window)), "") << view;
        EXPECT_EQ(lines(wrongStop(made.panel.window)), "") << view;
        EXPECT_EQ(lines(cutTexts(made.panel.window)), "") << view;
    }
}

TEST_P(EverySizeOfLine, NoCellIsCut)
{
    MadeUpLinePage made(3, GetParam());
    playBadCable(made);
    made.view.showBlocks(true);
    made.show();
    const auto *counters = made.page->findChild<QTableView *>(QStringLiteral("counters"));

    EXPECT_EQ(lines(cutCells(*counters)), "");
    made.page->open(LinePage::Frames);
    made.show();
    EXPECT_EQ(lines(cutCells(*made.page->findChild<QTableView *>(QStringLiteral("frames")))), "");
}

TEST_P(EverySizeOfLine, TheSheetsAreInReach)
{
    MadeUpLinePage made(32, GetParam());
    made.page->open(LinePage::Frames);

    click(made, "All stations");
    EXPECT_EQ(lines(wrongTargets(made.panel.window)), "");
    EXPECT_EQ(lines(wrongStop(made.panel.window)), "");
    click(made, "All");
    click(made, "Record...");
    EXPECT_EQ(lines(wrongTargets(made.panel.window)), "");
    EXPECT_EQ(lines(wrongStop(made.panel.window)), "");
    EXPECT_EQ(lines(cutTexts(made.panel.window)), "");
}

INSTANTIATE_TEST_SUITE_P(Window, EverySizeOfLine,
                         ::testing::Values(QSize(800, 480), QSize(1280, 800), QSize(1920, 1080)));

TEST(LinePage, AStationIsChosenForFramesAndAnswers)
{
    MadeUpLinePage made;
    playBadCable(made);
    click(made, "Frames");

    click(made, "All stations");
    click(made, "3 Conveyor");

    EXPECT_EQ(made.view.filter().station, 3);
    EXPECT_NE(button(made, "Station 3"), nullptr);
    click(made, "Answers");
    const auto *summary = made.page->findChild<QLabel *>(QStringLiteral("summary"));
    EXPECT_EQ(summary->accessibleName().toStdString(),
              "3 Conveyor: half within 10 ms, 99 % within 10 ms, slowest within 10 ms");
}

TEST(LinePage, OnlyErrorsCanBeListed)
{
    MadeUpLinePage made;
    playBadCable(made);
    click(made, "Frames");

    click(made, "Only errors");

    EXPECT_EQ(made.view.frames().rowCount(), 4);
}

TEST(LinePage, WhereNoErrorWasSeenItSaysSo)
{
    MadeUpLinePage made;
    made.passed(1, "01030400050007");
    click(made, "Frames");

    click(made, "Only errors");

    const auto *none = made.page->findChild<QLabel *>(QStringLiteral("no frames"));
    EXPECT_TRUE(none->isVisible());
    EXPECT_EQ(none->text().toStdString(), "No error was seen so far");
}

TEST(LinePage, WhoeverTurnsBackReads)
{
    MadeUpLinePage made;
    for (int i = 0; i < 40; ++i)
        made.passed(1, "01030400050007");
    click(made, "Frames");
    EXPECT_FALSE(made.view.isPaused());

    click(made, "Up");

    EXPECT_TRUE(made.view.isPaused());
    EXPECT_TRUE(button(made, "Pause")->isChecked());
    EXPECT_TRUE(button(made, "Down")->isEnabled());
}

TEST(LinePage, TheButtonsTellWhatIsShown)
{
    MadeUpLinePage made;
    playBadCable(made);

    made.view.showBlocks(true);
    made.view.showRecent(false);
    made.show();

    EXPECT_TRUE(button(made, "Blocks")->isChecked());
    EXPECT_FALSE(button(made, "Last minute")->isChecked());
}

TEST(LinePage, ARecordingThatFailedIsToldWithItsReason)
{
    MadeUpLinePage made;
    made.view.recorder().begin(QStringLiteral("/nowhere/line.pcap"), false);
    made.view.recorder().join();

    made.show();

    const auto *record = made.page->findChild<QLabel *>(QStringLiteral("record"));
    EXPECT_EQ(record->accessibleName().toStdString(),
              "Recording failed after 0 frames: /nowhere/line.pcap: No such file or directory");
    EXPECT_EQ(record->palette().color(QPalette::WindowText), lightLook().warning);
}

TEST(LinePage, ManyStationsAreTurnedByPages)
{
    MadeUpLinePage made(32);
    made.counted(seconds(1));
    made.show();
    EXPECT_FALSE(button(made, "Up")->isEnabled());

    while (button(made, "Down")->isEnabled())
        click(made, "Down");

    const auto *table = made.page->findChild<QTableView *>(QStringLiteral("counters"));
    const QRect last = table->visualRect(table->model()->index(32, 0));
    EXPECT_TRUE(table->viewport()->rect().contains(last.center()));
    EXPECT_TRUE(button(made, "Up")->isEnabled());
}

TEST(LinePage, ARecordingGetsANameThatTellsTheTime)
{
    MadeUpLinePage made;

    click(made, "Record...");
    click(made, "STICK");

    EXPECT_EQ(fileOf(made).toStdString(), "/media/me/STICK/line-20260301-120000.pcap");
}

TEST(LinePage, ARecordingBeginsAndEndsByTheSameButton)
{
    const QTemporaryDir folder;
    MadeUpLinePage made;
    click(made, "Record...");
    setFile(made, folder.filePath(QStringLiteral("a.pcap")));

    click(made, "Record");
    made.passed(1, "01030400050007");
    EXPECT_TRUE(made.view.recorder().isBusy());
    click(made, "End recording");
    made.view.recorder().join();
    made.show();

    EXPECT_EQ(made.view.recorder().state().frames, 2U);
    EXPECT_NE(button(made, "Record..."), nullptr);
}

TEST(LinePage, AFileThatIsThereIsReplacedAfterAQuestionAlone)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.pcap"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("notes");
    file.close();
    MadeUpLinePage made;
    click(made, "Record...");
    setFile(made, path);

    click(made, "Record");
    made.view.recorder().join();
    made.show();
    EXPECT_EQ(file.size(), 5);
    click(made, "Replace it and record");
    made.view.recorder().end();
    made.view.recorder().join();

    EXPECT_EQ(made.view.recorder().state().stage, FrameRecorder::Stage::Ended);
}

TEST(LinePage, AnotherNameIsNoReplacement)
{
    const QTemporaryDir folder;
    MadeUpLinePage made;
    auto *sheet = made.page->findChild<RecordSheet *>();
    sheet->askToReplace(folder.filePath(QStringLiteral("a.pcap")));
    made.show();

    QTest::keyClicks(made.page->findChild<QLineEdit *>(QStringLiteral("file")),
                     QStringLiteral("x"));
    made.show();

    EXPECT_EQ(button(made, "Replace it and record"), nullptr);
    EXPECT_NE(button(made, "Record"), nullptr);
}

TEST(LinePage, TheTableLetsTheKeyboardOn)
{
    MadeUpLinePage made;
    made.show();

    EXPECT_FALSE(
        made.page->findChild<QTableView *>(QStringLiteral("counters"))->tabKeyNavigation());
}

TEST(LinePage, TheButtonOfTheOpenPageIsMarked)
{
    MadeUpLinePage made;
    const auto isMarked = [&made](const char *text) {
        const auto buttons = made.panel.window.findChildren<QAbstractButton *>();
        return std::any_of(buttons.begin(), buttons.end(), [text](const QAbstractButton *button) {
            return button->text() == QLatin1String(text) && button->isChecked();
        });
    };

    EXPECT_TRUE(isMarked("Line"));
    EXPECT_FALSE(isMarked("Drives"));
    made.panel.window.openPage(0);
    EXPECT_FALSE(isMarked("Line"));
    EXPECT_TRUE(isMarked("Drives"));
}
