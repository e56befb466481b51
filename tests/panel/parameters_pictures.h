// SPDX-License-Identifier: MIT
// The page of the parameters in its states, as files.
#pragma once

#include <QDir>
#include <QSize>

/// @param look  "light" or "dark", for the names of the files
void drawParameters(QSize size, const char *look, const QDir &folder);
