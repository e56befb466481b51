// SPDX-License-Identifier: MIT
// Writes a journal.
#pragma once

#include "journal/journal_file.h"
#include "journal/records.h"

#include <QVector>

#include <memory>
#include <vector>

namespace dx4::journal {

struct JournalSettings {
    QString program; ///< who writes, for the list of starts
    Bounds bounds;
    int patience = 5000; ///< for another program that holds the file, in milliseconds
};

/// What is written at one stroke, in the order in which it came.
struct Batch {
    std::vector<Event> events;
    std::vector<Sample> samples;
    std::map<RegisterKey, WearCount> wear; ///< that is added

    bool isEmpty() const { return events.empty() && samples.empty() && wear.empty(); }
};

/// The file of a journal, open to be written. Used on the thread that opened it.
///
/// What write() took is there after a kill, whenever that comes. Events and wear are there after a
/// power cut as well, as far as the disk keeps its word; samples of the last minutes may be lost
/// with one, and the file stays whole.
class Journal {
public:
    /// Opens a file, see openToWrite().
    ///
    /// @param trouble     out: why not
    /// @param setAsideAs  out: the new name of a damaged file that was there; may be null
    static std::unique_ptr<Journal> open(const QString &path, const JournalSettings &settings,
                                         Trouble *trouble, QString *setAsideAs = nullptr);

    ~Journal();
    Journal(const Journal &) = delete;
    Journal &operator=(const Journal &) = delete;

    /// Writes all of it or nothing.
    ///
    /// @param trouble  out: why not
    bool write(const Batch &batch, Trouble *trouble);

    /// Notes that this start has ended as it should.
    void end();

    /// Whether the file is still the one at its path; it is not when somebody moved or removed it.
    bool isInPlace() const;

private:
    struct Writer;

    Journal(std::unique_ptr<Database> database, const JournalSettings &settings);

    const std::unique_ptr<Database> m_database;
    std::unique_ptr<Writer> m_writer;
    quint64 m_file = 0; ///< its number in the file system
};

} // namespace dx4::journal
