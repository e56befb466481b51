// SPDX-License-Identifier: MIT
// A journal in a folder of its own.
#pragma once

#include "journal/journal.h"
#include "journal/journal_reader.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using Texts = std::vector<std::string>;

/// 2026-03-01, 12:00:00 UTC: a whole half hour.
constexpr dx4::journal::Time noon = 1'772'366'400'000;

/// An event of the first run of the clock.
dx4::journal::Event eventOf(const char *text, dx4::journal::Time time = noon,
                            dx4::journal::EventKind kind = dx4::journal::EventKind::Notice);

/// D 0 of station 1 on line "a", or another address.
dx4::journal::Series seriesOf(int address = 0);

/// One change to a value, in a whole second of the first run of the clock.
dx4::journal::Sample sampleOf(int value, dx4::journal::Time time, int address = 0);

class JournalTest : public ::testing::Test {
protected:
    /// Opens the journal, in place of the one that is open.
    void open(const dx4::journal::JournalSettings &settings = {});

    bool write(const dx4::journal::Batch &batch);
    bool writeEvents(const std::vector<dx4::journal::Event> &events);
    bool writeSamples(const std::vector<dx4::journal::Sample> &samples);

    std::unique_ptr<dx4::journal::JournalReader> reader() const;
    QVector<dx4::journal::Event> events(const dx4::journal::EventQuery &query = {}) const;

    /// Texts of events, the oldest first.
    Texts texts(dx4::journal::EventQuery query = {}) const;

    /// "time in s since noon: lowest to highest, last (count)" of each row; "bad" for a worse
    /// quality.
    Texts history(dx4::journal::Time from, dx4::journal::Time to, int mostRows = 1000,
                  int address = 0) const;

    /// A number out of the file.
    qint64 number(const char *sql) const;

    /// Carries a statement out beside the journal.
    void execute(const char *sql) const;

    QStringList files() const;

    QTemporaryDir folder;
    QString path { folder.filePath(QStringLiteral("journal.sqlite")) };
    std::unique_ptr<dx4::journal::Journal> journal;
    dx4::journal::Trouble trouble;
    QString setAsideAs;
};
