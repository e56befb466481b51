// SPDX-License-Identifier: MIT
// Where the panel keeps its journal.
#pragma once

#include "host/config/config.h"
#include "panel/app/options.h"

#include <memory>

class QTemporaryDir;

namespace dx4::panel {

struct JournalPlace {
    QString path; ///< empty: none is kept
    std::shared_ptr<QTemporaryDir> ownFolder; ///< of a demonstration, removed with it

    /// Where snapshots of faults are kept: beside the journal; empty where there is none.
    QString snapshotFolder() const;
};

/// The place that was asked for; a temporary one for a demonstration, else the user's data. Folders
/// are made.
JournalPlace journalPlaceOf(const Options &options);

/// What the line is called in the journal: its port, as a configuration names it.
QString journalLineOf(const Options &options, const host::Config &config);

} // namespace dx4::panel
