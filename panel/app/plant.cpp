// SPDX-License-Identifier: MIT
// What the panel looks at: a configuration, its line, and the simulated drives of a demonstration.
#include "panel/app/plant.h"

#include "cli/console/filled.h"
#include "host/link/plugin.h"

#include <QStringList>

#include <utility>

namespace dx4::panel {
namespace {

const QString demoFile = QStringLiteral(":/panel/demo.toml");

QString allOf(const QVector<host::ConfigError> &errors, const QString &file)
{
    QStringList lines;
    for (const host::ConfigError &error : errors)
        lines.append(error.in(file));
    return lines.join(QLatin1Char('\n'));
}

std::optional<host::Config> readConfig(const Options &options, cli::Failure *failure)
{
    const QString file = options.demo ? demoFile : options.config;
    QVector<host::ConfigError> errors;
    auto config = host::loadConfig(file, &errors);
    if (!config)
        return cli::refuse(failure, allOf(errors, file));
    if (!config->stop.controlWord)
        return cli::refuse(failure,
                           cli::filled("%1: [stop] has no control_word; the stop button needs the "
                                       "value of CW that stops a drive",
                                       file));
    return config;
}

std::unique_ptr<cli::SimulatorProcess> startSimulator(const Options &options, host::Config &config,
                                                      cli::Failure *failure)
{
    const cli::SimulatorFile file = cli::locateSimulator(options.simulator);
    if (file.path.isEmpty()) {
        cli::refuse(
            failure,
            cli::filled("the simulator dx4-sim not found; looked for %1; name it with --sim",
                        file.tried.join(QStringLiteral(", "))),
            cli::ExitFailed);
        return nullptr;
    }
    QStringList stations;
    for (const host::StationConfig &station : std::as_const(config.stations))
        stations.append(QString::number(station.address));
    auto simulator = std::make_unique<cli::SimulatorProcess>();
    QString error;
    if (!simulator->start(file.path, stations.join(QLatin1Char(',')), config.line.speed, &error)) {
        cli::refuse(failure, error, cli::ExitFailed);
        return nullptr;
    }
    config.line.port = simulator->device();
    return simulator;
}

std::optional<host::Plan> makePlan(const Options &options, const host::Config &config,
                                   const QString &driver, cli::Failure *failure)
{
    QString error;
    auto scratch = host::Plugin::load(driver, host::Plugin::Instance::PrivateCopy, &error);
    if (!scratch)
        return cli::refuse(failure, error, cli::ExitFailed);
    host::Planner planner(std::move(scratch), config.link);
    QVector<host::ConfigError> errors;
    auto plan = host::planOf(config, planner, &errors);
    if (!plan)
        return cli::refuse(failure, allOf(errors, options.demo ? demoFile : options.config));
    return plan;
}

} // namespace

std::optional<Plant> makePlant(const Options &options, cli::Failure *failure)
{
    const host::DriverFile driver = host::locateDriver(options.driver);
    if (driver.path.isEmpty())
        return cli::refuse(failure,
                           cli::filled("the driver libkorvane_dx4.so not found; looked for %1; "
                                       "name it with --driver",
                                       driver.tried.join(QStringLiteral(", "))),
                           cli::ExitFailed);
    auto config = readConfig(options, failure);
    const auto plan = config ? makePlan(options, *config, driver.path, failure) : std::nullopt;
    if (!plan)
        return std::nullopt;
    Plant plant;
    if (options.demo) {
        plant.simulator = startSimulator(options, *config, failure);
        if (!plant.simulator)
            return std::nullopt;
    }
    plant.config = *config;
    plant.service = std::make_unique<host::LineService>(host::serialLine(config->line, driver.path),
                                                        host::serviceSettings(*config, *plan));
    return plant;
}

} // namespace dx4::panel
