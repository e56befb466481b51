// SPDX-License-Identifier: MIT
// What every test of a serial line needs.
#pragma once

#include "host/line/serial_line.h"

#include "pseudo_terminal.h"

#include <QCoreApplication>

inline dx4::host::LineSettings on(const QString &port)
{
    dx4::host::LineSettings settings;
    settings.port = port;
    return settings;
}

/// Qt's serial port complains on a thread that has no application or event loop.
class SerialLineTest : public ::testing::Test {
protected:
    int count = 1;
    char program[5] = "test";
    char *arguments[2] = { program, nullptr };
    QCoreApplication application { count, arguments };
};
