// SPDX-License-Identifier: MIT
// Opens the file of a journal, and sets a damaged one aside.
#pragma once

#include "journal/database.h"

#include <memory>

namespace dx4::journal {

/// A journal's file, ready to be written or read.
struct OpenedFile {
    std::unique_ptr<Database> database; ///< null: see trouble
    Trouble trouble;
    QString setAsideAs; ///< where the damaged file went that was found in its place; empty: none
};

/// Opens a file to write, makes it where there is none, and brings an older one up to date.
///
/// A file that is damaged gets another name in its folder, "NAME.damaged-1" and so on, and an empty
/// one takes its place; nothing is ever removed. A newer version's file and the database of another
/// program stay as they are and are refused.
///
/// @param patience  for another program's lock, in milliseconds
OpenedFile openToWrite(const QString &path, int patience);

/// Opens a file to read, while others may write it.
OpenedFile openToRead(const QString &path, int patience);

} // namespace dx4::journal
