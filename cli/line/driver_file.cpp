// SPDX-License-Identifier: MIT
// The driver, found and loaded for a command.
#include "cli/line/driver_file.h"

namespace dx4::cli {

void addDriverOption(Command &command, QString &path)
{
    command.text("--driver", path, "file of the driver, libkorvane_dx4.so", "FILE");
}

std::unique_ptr<host::Plugin> loadDriver(const QString &path, Failure *failure)
{
    const host::DriverFile file = host::locateDriver(path);
    if (file.path.isEmpty()) {
        *failure = {
            ExitFailed,
            filled("the driver libkorvane_dx4.so not found; looked for %1; name it with --driver",
                   file.tried.join(QStringLiteral(", ")))
        };
        return nullptr;
    }
    QString error;
    auto plugin = host::Plugin::load(file.path, host::Plugin::Instance::Shared, &error);
    if (!plugin)
        *failure = { ExitFailed, error };
    return plugin;
}

} // namespace dx4::cli
