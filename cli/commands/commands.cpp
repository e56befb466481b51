// SPDX-License-Identifier: MIT
// All commands of the tool.
#include "cli/commands/commands.h"

namespace dx4::cli {
namespace {

struct Row {
    const char *name;
    const char *summary;
    void (*describe)(Command &);
};

const Row rows[] = {
    { "demo", "poll and write a simulated inverter", describeDemo },
    { "types", "list the register types with formats, ranges and rights", describeTypes },
    { "check", "ask the driver whether an address is acceptable", describeCheck },
    { "copies", "list the addresses of stepped copies", describeCopies },
    { "frames", "show requests and explain frames; needs no line", describeFrames },
    { "get", "read registers once", describeGet },
    { "set", "write registers once", describeSet },
    { "batch", "run the commands of a file on one line", describeBatch },
    { "watch", "poll registers and show them as they change", describeWatch },
    { "plan", "show the blocks and the time that polling takes", describePlan },
    { "scan", "find the stations on a line", describeScan },
    { "stats", "poll and count how well the line works", describeStats },
    { "run", "set a frequency and start the motor", describeRun },
    { "stop", "stop the motor", describeStop },
    { "line", "list serial ports and who holds them", describeLine },
    { "params", "keep the parameters of a station in a file", describeParams },
    { "record", "poll and keep every frame in a file", describeRecord },
    { "replay", "play a recording through the driver once more", describeReplay },
};

} // namespace

void addCommands(CommandLine &line)
{
    for (const Row &row : rows) {
        Command command = line.add(row.name, row.summary);
        row.describe(command);
    }
}

} // namespace dx4::cli
