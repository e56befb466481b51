// SPDX-License-Identifier: MIT
// Banner and page of the alarms in their states, as files.
#pragma once

#include <QDir>
#include <QSize>

/// @param look  "light" or "dark", for the names of the files
void drawAlarms(QSize size, const char *look, const QDir &folder);
