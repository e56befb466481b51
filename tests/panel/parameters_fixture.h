// SPDX-License-Identifier: MIT
// Parameters of drives that a test makes up.
#pragma once

#include "panel_fixture.h"

#include "panel/parameters/parameter_book.h"
#include "panel/parameters/parameter_files.h"
#include "panel/parameters/parameter_journal.h"
#include "panel/parameters/parameter_restore.h"
#include "panel/parameters/parameter_table.h"
#include "panel/parameters/parameters_page.h"

#include <QTemporaryDir>

#include <vector>

/// A port that notes what it was asked for.
struct MadeUpJobs {
    struct Restore {
        int station;
        dx4::host::ParameterSet set;
    };

    dx4::panel::ParameterPort port();

    std::vector<dx4::host::ParameterSet> backups; ///< with ids from 1 on
    std::vector<Restore> restores; ///< with ids from 501 on
    std::vector<int> cancelled;
    bool isClosed = false;
};

/// All parameters of a station, as it left the factory: each holds its index.
dx4::host::ParameterSet factorySet(int station);

/// The same with some that are of this machine: 0.1, 1.3, 4.28, 8.2 and c.13 have other values, 8.4
/// and 8.5 are refused.
dx4::host::ParameterSet tunedSet(int station);

/// Internal address of group and index.
constexpr int at(int group, int index)
{
    return group * 256 + index;
}

/// How a write of one register ended.
dx4::host::WriteOutcome wrote(int station, int address, quint16 value);

/// Gives three parameters of the first drive names, two of them a scaling.
dx4::host::Config withParameterNames(dx4::host::Config config);

/// A journal in a folder of its own: 8.2 of station 1 on line "main" was written three times, 0.1
/// of station 2 once.
void writeJournal(const QString &path);

/// Book, restore, table and files over a line that is made up; work is done at once.
struct MadeUpParameters {
    explicit MadeUpParameters(bool hasJournal = false);

    /// Reads the second side, a drive, as this; `id` is that of the job.
    void read(int id, const dx4::host::ParameterSet &set, const char *error = "");

    /// "drive.txt" on the left, the drive 1 on the right, read.
    void compare();

    QTemporaryDir folder;
    MadeUpLine made { 3 };
    MadeUpJobs jobs;
    dx4::panel::Standing standing = dx4::panel::Standing::Stands;
    dx4::panel::ParameterBook book;
    dx4::panel::ParameterRestore restore;
    dx4::panel::ParameterJournal journal;
    dx4::panel::ParameterTable table;
    std::vector<std::string> failures;
};

/// A window with the page of the parameters, which is open.
struct ParametersPanel {
    explicit ParametersPanel(QSize size = { 800, 480 }, bool hasJournal = false);

    /// Draws what is known now.
    void show();

    /// "drive.txt" of this station on the left, the first drive on the right, read.
    void compare(int fileStation = 1);

    /// The page's visible button with this text; null: there is none.
    QAbstractButton *button(const char *text) const;
    void click(const char *text);

    /// Holds a button for a second.
    void hold(const char *text);

    QTemporaryDir folder;
    MadeUpJobs jobs;
    dx4::panel::Standing standing = dx4::panel::Standing::Stands;
    MadeUpPanel panel;
    dx4::panel::ParametersPage *page; ///< the window's
};
