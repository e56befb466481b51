// SPDX-License-Identifier: MIT
// What the journal costs: a second of samples written beside bare rows, windows read, bytes kept.
#include "journal/journal.h"
#include "journal/journal_reader.h"

#include <benchmark/benchmark.h>

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <memory>
#include <stdexcept>

using namespace dx4::journal;

namespace {

constexpr Time begin = 1'700'000'000'000; // any day
constexpr Time minuteMs = 60 * secondMs;
constexpr Time dayMs = 24 * 60 * minuteMs;
constexpr int mostRows = 1000;

RegisterKey registerOf(int number)
{
    return { QStringLiteral("line"), 1 + number / 40, QStringLiteral("D"), number % 40 };
}

/// Registers that all changed in a second.
Batch secondOf(int registers, Time time)
{
    Batch batch;
    for (int i = 0; i < registers; ++i) {
        const int value = static_cast<int>(time / secondMs + i) % 1000;
        batch.samples.push_back(
            { { registerOf(i), {}, {} }, 1, time, value, value + 5, value, 10, Quality::Good });
    }
    return batch;
}

std::unique_ptr<Journal> opened(const QTemporaryDir &folder)
{
    Trouble trouble;
    JournalSettings settings;
    settings.program = QStringLiteral("bench");
    auto journal = Journal::open(folder.filePath(QStringLiteral("journal")), settings, &trouble);
    if (!journal)
        throw std::runtime_error(trouble.text.toStdString());
    return journal;
}

void writeOrThrow(Journal &journal, const Batch &batch)
{
    Trouble trouble;
    if (!journal.write(batch, &trouble))
        throw std::runtime_error(trouble.text.toStdString());
}

void secondWritten(benchmark::State &state)
{
    const QTemporaryDir folder;
    const auto journal = opened(folder);
    const int registers = static_cast<int>(state.range(0));
    Time time = begin;
    for (auto _ : state)
        writeOrThrow(*journal, secondOf(registers, time += secondMs));
    const qint64 rows = state.iterations() * registers;
    const QFileInfo file(folder.filePath(QStringLiteral("journal")));
    const QFileInfo log(file.filePath() + QStringLiteral("-wal"));
    state.SetItemsProcessed(rows);
    state.counters["bytes_per_sample"] =
        static_cast<double>(file.size() + log.size()) / static_cast<double>(rows);
}

/// The same rows by Qt SQL alone: one prepared statement and one transaction a second.
void bareRowsWritten(benchmark::State &state)
{
    const QTemporaryDir folder;
    const int registers = static_cast<int>(state.range(0));
    {
        QSqlDatabase file =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bare"));
        file.setDatabaseName(folder.filePath(QStringLiteral("bare")));
        file.open();
        QSqlQuery query(file);
        query.exec(QStringLiteral("PRAGMA journal_mode = WAL"));
        query.exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
        query.exec(QStringLiteral("CREATE TABLE row (time INTEGER, series INTEGER, lowest INTEGER, "
                                  "highest INTEGER, last INTEGER, count INTEGER, "
                                  "quality INTEGER)"));
        query.prepare(QStringLiteral("INSERT INTO row VALUES (?, ?, ?, ?, ?, ?, ?)"));
        Time time = begin;
        for (auto _ : state) {
            const Batch batch = secondOf(registers, time += secondMs);
            file.transaction();
            for (int i = 0; i < registers; ++i) {
                const Sample &sample = batch.samples[static_cast<std::size_t>(i)];
                query.bindValue(0, sample.time);
                query.bindValue(1, i);
                query.bindValue(2, sample.lowest);
                query.bindValue(3, sample.highest);
                query.bindValue(4, sample.last);
                query.bindValue(5, sample.count);
                query.bindValue(6, static_cast<int>(sample.quality));
                query.exec();
            }
            file.commit();
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("bare"));
    state.SetItemsProcessed(state.iterations() * registers);
}

/// A day of one register that changes every ten seconds.
class FilledDay {
public:
    FilledDay()
    {
        const auto journal = opened(m_folder);
        for (Time time = begin; time < begin + dayMs; time += 10 * minuteMs) {
            Batch batch;
            for (Time second = time; second < time + 10 * minuteMs; second += 10 * secondMs) {
                for (const Sample &sample : secondOf(1, second).samples)
                    batch.samples.push_back(sample);
            }
            writeOrThrow(*journal, batch);
        }
        journal->end();
    }

    std::unique_ptr<JournalReader> reader() const
    {
        Trouble trouble;
        return JournalReader::open(m_folder.filePath(QStringLiteral("journal")), &trouble);
    }

private:
    QTemporaryDir m_folder;
};

void windowRead(benchmark::State &state)
{
    static const FilledDay day;
    const auto reader = day.reader();
    const Time span = state.range(0) * minuteMs;
    const HistoryQuery query { registerOf(0), { begin + dayMs - span, begin + dayMs }, mostRows };
    qsizetype rows = 0;
    for (auto _ : state) {
        const auto history = reader->history(query);
        rows = history ? history->points.size() : 0;
    }
    state.counters["rows"] = static_cast<double>(rows);
}

BENCHMARK(secondWritten)->Arg(10)->Arg(60)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareRowsWritten)->Arg(10)->Arg(60)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(windowRead)->Arg(16)->Arg(160)->Arg(1440)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
