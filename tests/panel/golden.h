// SPDX-License-Identifier: MIT
// Texts held against what they were when somebody looked at them.
#pragma once

#include <QString>

/// Holds a text against a file of tests/panel/golden. DX4_WRITE_GOLDEN=1 writes the file instead.
void expectGolden(const char *name, const QString &text);
