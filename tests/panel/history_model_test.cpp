// SPDX-License-Identifier: MIT
// The lists of alarms and events as models.
#include "alarm_fixture.h"

#include "panel/alarms/list_rows.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

using namespace dx4::panel;
using namespace dx4::journal;

namespace {

/// Ends the test with the first thing that a model does wrong.
void watchOver(QAbstractItemModel &model)
{
    new QAbstractItemModelTester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal,
                                 &model);
}

struct Asked {
    Asked()
        : model(
            [this](const EventQuery &query, std::function<void(const EventsRead &)> then) {
                queries.push_back(query);
                answers.push_back(std::move(then));
            },
            AlarmWords())
    {
    }

    /// Answers a question with events of these ids, descending.
    void give(std::size_t question, qint64 newest, int count)
    {
        EventsRead read;
        for (int i = 0; i < count; ++i)
            read.events.append(
                historyEvent(newest - i, EventKind::Notice, 0, "a notice", panelNoon));
        answers[question](read);
    }

    std::vector<EventQuery> queries;
    std::vector<std::function<void(const EventsRead &)>> answers;
    HistoryModel model;
};

QString text(const QAbstractItemModel &model, int row, int role)
{
    return model.index(row, 0).data(role).toString();
}

} // namespace

TEST(HistoryModel, ReadsOnePageAndTheNextWhenItIsScrolledTo)
{
    Asked under;
    under.model.show({}, panelNoon);
    EXPECT_EQ(under.queries[0].most, 100);
    under.give(0, 900, 100);
    EXPECT_EQ(under.model.rowCount(), 100);
    ASSERT_TRUE(under.model.canFetchMore({}));

    under.model.fetchMore({});
    EXPECT_FALSE(under.model.canFetchMore({})) << "a read is under way";
    EXPECT_EQ(under.queries[1].before, 801);
    under.give(1, 800, 30);

    EXPECT_EQ(under.model.rowCount(), 130);
    EXPECT_FALSE(under.model.canFetchMore({}));
}

TEST(HistoryModel, KeepsTheRulesOfModels)
{
    Asked under;
    watchOver(under.model);

    under.model.show({}, panelNoon);
    for (std::size_t i = 0; i < 3; ++i) {
        under.model.fetchMore({});
        under.give(i, 900 - 100 * static_cast<qint64>(i), 100);
    }
    EXPECT_EQ(under.model.rowCount(), 300);

    under.model.show({}, panelNoon);
    EXPECT_EQ(under.model.rowCount(), 0);
}

TEST(HistoryModel, HoldsSoManyRowsAndNoMore)
{
    Asked under;
    under.model.show({}, panelNoon);
    for (std::size_t i = 0; i < 50; ++i) {
        under.give(i, 10'000 - 100 * static_cast<qint64>(i), 100);
        under.model.fetchMore({});
    }

    EXPECT_EQ(under.model.rowCount(), 5000);
    EXPECT_EQ(under.queries.size(), 50U);
}

TEST(HistoryModel, AnAnswerToAnEarlierQuestionIsLeftAlone)
{
    Asked under;
    under.model.show({}, panelNoon);
    HistoryFilter filter;
    filter.station = 2;
    under.model.show(filter, panelNoon);

    under.give(0, 900, 5);
    EXPECT_EQ(under.model.rowCount(), 0);

    under.give(1, 900, 3);
    EXPECT_EQ(under.model.rowCount(), 3);
    EXPECT_EQ(under.queries[1].station, 2);
}

TEST(HistoryModel, TellsWhenWhatAndWhere)
{
    Asked under;
    under.model.show({}, panelNoon);

    under.answers[0](
        { { historyEvent(7, EventKind::Station, 4, "station 4 is back", panelNoon - 90'000) },
          {} });

    EXPECT_EQ(text(under.model, 0, Qt::DisplayRole).toStdString(), "station 4 is back");
    EXPECT_EQ(text(under.model, 0, DetailRole).toStdString(), "Station, Station 4");
    EXPECT_EQ(text(under.model, 0, TimeRole).toStdString(), "11:58:30");
    EXPECT_EQ(text(under.model, 0, FullTextRole).toStdString(),
              "2026-03-01 11:58:30\nStation, Station 4\nstation 4 is back");
}

TEST(HistoryModel, AnEventOfAnotherDayHasItsDate)
{
    EXPECT_EQ(timeText(panelNoon - 86'400'000, panelNoon).toStdString(), "2026-02-28 12:00");
    EXPECT_EQ(timeText(panelNoon - 3'600'000, panelNoon).toStdString(), "11:00:00");
}

TEST(AlarmModel, FollowsItsBook)
{
    AlarmBook book;
    MadeUpLine made;
    AlarmModel model(book, AlarmWords(made.config));
    watchOver(model);
    const AlarmKey key { AlarmKind::Fault, 3, 2, {} };

    book.raise(key, {}, panelNoon);
    model.refresh(panelNoon);
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(text(model, 0, Qt::DisplayRole).toStdString(), "Conveyor: overvoltage");
    EXPECT_EQ(text(model, 0, DetailRole).toStdString(), "active, not acknowledged");
    EXPECT_EQ(model.index(0).data(MarkRole).toInt(), static_cast<int>(RowMark::Alert));

    book.clear(key, panelNoon + 2000);
    book.raise(key, {}, panelNoon + 3000);
    book.clear(key, panelNoon + 5000);
    model.refresh(panelNoon);
    EXPECT_EQ(text(model, 0, DetailRole).toStdString(),
              "over, not acknowledged; came 2 times; went 12:00:05");
    EXPECT_EQ(model.index(0).data(MarkRole).toInt(), static_cast<int>(RowMark::Over));

    book.acknowledge(key);
    model.refresh(panelNoon);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.rowOf(key), -1);
}

TEST(AlarmModel, TheSameRowsAreNotMadeAnew)
{
    AlarmBook book;
    AlarmModel model(book, {});
    const AlarmKey key { AlarmKind::Fault, 3, 2, {} };
    book.raise(key, {}, panelNoon);
    model.refresh(panelNoon);
    int resets = 0;
    QObject::connect(&model, &AlarmModel::modelReset, [&] { ++resets; });

    book.acknowledge(key);
    model.refresh(panelNoon);
    model.refresh(panelNoon);

    EXPECT_EQ(resets, 0);
    EXPECT_EQ(text(model, 0, DetailRole).toStdString(), "active, acknowledged");
}

TEST(AlarmWords, AFaultWithoutAWordIsItsNumberAndADriveWithoutANameItsStation)
{
    AlarmBook book;
    const AlarmKey key { AlarmKind::Fault, 9, 77, {} };
    book.raise(key, {}, panelNoon);

    const AlarmWords words;

    EXPECT_EQ(words.heading(*book.find(key)).toStdString(), "Station 9: fault 77");
}
