// SPDX-License-Identifier: MIT
// dx4: the driver at the command line.
#include "cli/commands/batch.h"
#include "cli/commands/check.h"
#include "cli/commands/copies.h"
#include "cli/commands/demo.h"
#include "cli/commands/frames.h"
#include "cli/commands/get.h"
#include "cli/commands/line.h"
#include "cli/commands/params.h"
#include "cli/commands/plan.h"
#include "cli/commands/record.h"
#include "cli/commands/replay.h"
#include "cli/commands/run.h"
#include "cli/commands/scan.h"
#include "cli/commands/set.h"
#include "cli/commands/stats.h"
#include "cli/commands/stop.h"
#include "cli/commands/types.h"
#include "cli/commands/watch.h"
#include "cli/console/interrupt.h"
#include "cli/console/output.h"
#include "common/standard_descriptors.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    dx4::common::holdStandardStreams();
    const QCoreApplication application(argc, argv);
    dx4::cli::ignoreBrokenPipe();
    dx4::cli::CommandLine line(KORVANE_VERSION);
    dx4::cli::addDemo(line);
    dx4::cli::addTypes(line);
    dx4::cli::addCheck(line);
    dx4::cli::addCopies(line);
    dx4::cli::addFrames(line);
    dx4::cli::addGet(line);
    dx4::cli::addSet(line);
    dx4::cli::addBatch(line);
    dx4::cli::addWatch(line);
    dx4::cli::addPlan(line);
    dx4::cli::addScan(line);
    dx4::cli::addStats(line);
    dx4::cli::addRun(line);
    dx4::cli::addStop(line);
    dx4::cli::addLine(line);
    dx4::cli::addParams(line);
    dx4::cli::addRecord(line);
    dx4::cli::addReplay(line);
    return line.run(argc, argv);
}
