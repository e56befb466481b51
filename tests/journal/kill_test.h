// SPDX-License-Identifier: MIT
// The child that is killed while it writes.
#pragma once

#include <QString>

/// Writes batch after batch, each with an event and a sample of its number, and prints the number
/// of each that was taken. Numbers go on where the file ends.
int writeUntilKilled(const QString &path);
