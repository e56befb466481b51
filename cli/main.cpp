// SPDX-License-Identifier: MIT
// dx4: the driver at the command line.
#include "cli/commands/check.h"
#include "cli/commands/copies.h"
#include "cli/commands/demo.h"
#include "cli/commands/frames.h"
#include "cli/commands/types.h"
#include "cli/interrupt.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    dx4::cli::ignoreBrokenPipe();
    dx4::cli::CommandLine line(KORVANE_VERSION);
    dx4::cli::addDemo(line);
    dx4::cli::addTypes(line);
    dx4::cli::addCheck(line);
    dx4::cli::addCopies(line);
    dx4::cli::addFrames(line);
    return line.run(argc, argv);
}
