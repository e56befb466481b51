// SPDX-License-Identifier: MIT
// The page of the line in its states, as files.
#pragma once

#include <QDir>
#include <QSize>

/// @param look  "light" or "dark", for the names of the files
void drawLine(QSize size, const char *look, const QDir &folder);
