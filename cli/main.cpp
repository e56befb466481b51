// SPDX-License-Identifier: MIT
// dx4: the driver at the command line.
#include "cli/commands/commands.h"
#include "cli/console/interrupt.h"
#include "common/standard_descriptors.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    dx4::common::holdStandardStreams();
    const QCoreApplication application(argc, argv);
    dx4::cli::ignoreBrokenPipe();
    dx4::cli::CommandLine line("dx4 " KORVANE_VERSION);
    dx4::cli::addCommands(line);
    return line.run(argc, argv);
}
