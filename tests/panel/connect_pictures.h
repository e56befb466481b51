// SPDX-License-Identifier: MIT
// The page of ports, plan and configuration in its states, as files.
#pragma once

#include <QDir>
#include <QSize>

/// @param look  "light" or "dark", for the names of the files
void drawConnect(QSize size, const char *look, const QDir &folder);
