// SPDX-License-Identifier: MIT
// All commands of the tool.
#pragma once

#include "cli/console/command_line.h"

namespace dx4::cli {

/// Adds them in the order of the help.
void addCommands(CommandLine &line);

// Each gives a command its options, its examples and its action.
void describeDemo(Command &command);
void describeTypes(Command &command);
void describeCheck(Command &command);
void describeCopies(Command &command);
void describeFrames(Command &frames);
void describeGet(Command &command);
void describeSet(Command &command);
void describeBatch(Command &command);
void describeWatch(Command &command);
void describePlan(Command &command);
void describeScan(Command &command);
void describeStats(Command &command);
void describeRun(Command &command);
void describeStop(Command &command);
void describeLine(Command &command);
void describeParams(Command &params);
void describeRecord(Command &command);
void describeReplay(Command &command);

/// Adds "frames decode".
void describeFramesDecode(Command &frames);

} // namespace dx4::cli
