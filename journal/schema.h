// SPDX-License-Identifier: MIT
// The tables of a journal, and the way there from the versions before.
#pragma once

#include "journal/database.h"

#include <QStringList>
#include <QVector>

namespace dx4::journal {

/// Marks the file as a journal ("dx4j").
constexpr qint64 applicationId = 0x6478346A;

/// The statements that lead from each version to the next; the first ones make an empty file
/// version 1. To change the tables, append a step; never change one.
const QVector<QStringList> &schemaSteps();

/// Says whether a file is a journal that these steps know, without a write.
///
/// @param isEmpty  out: the file has no tables yet
/// @return false with the trouble of the database set
bool checkSchema(Database &database, int steps, bool *isEmpty);

/// Brings a file to the version of the last step, as a whole or not at all.
bool bringUpToDate(Database &database, const QVector<QStringList> &steps);

} // namespace dx4::journal
