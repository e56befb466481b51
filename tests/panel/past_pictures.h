// SPDX-License-Identifier: MIT
// The time around a fault as it is opened later, as files.
#pragma once

#include <QDir>
#include <QSize>

/// @param look  "light" or "dark", for the names of the files
void drawPast(QSize size, const char *look, const QDir &folder);
