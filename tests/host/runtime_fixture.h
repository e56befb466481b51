// SPDX-License-Identifier: MIT
// A runtime over a scripted line, with what it reported as text.
#pragma once

#include "host/runtime/runtime.h"
#include "scripted_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Texts = std::vector<std::string>;

/// 10000 bit/s: a character takes 1 ms; 100 ms response timeout.
dx4::host::LineSettings slowLine();

/// A private copy of the built driver.
std::unique_ptr<dx4::host::Plugin> privateCopy();

/// The plan of these wishes in blocks of 16; throws when there is none.
dx4::host::Plan planOf(const QVector<dx4::host::PlanEntry> &entries);

/// One host on one line.
class RuntimeUnderTest {
public:
    explicit RuntimeUnderTest(const dx4::host::RuntimeSettings &settings = {},
                              const dx4::host::LineSettings &line = slowLine());

    /// Steps; waits for `count` exchanges, and lets idle times pass.
    void steps(int count);

    /// Steps until the line's clock has gone on by `span`.
    void runFor(dx4::host::Duration span);

    int write(int station, const char *type, int address, const QVector<quint16> &values);

    int value(int station, const char *type, int address)
    {
        return host.value(station, QString::fromLatin1(type), address).value;
    }

    /// Frames sent to a station with this function.
    int sent(int station, int function) const;

    ScriptedLine stations;
    dx4::host::Runtime host;
    Texts outcomes; ///< "id end", with "(exception n)" or "(held)" behind it, in order
    std::vector<dx4::host::WriteOutcome> outcomeRecords;
    Texts alarms;
};
