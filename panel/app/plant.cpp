// SPDX-License-Identifier: MIT
// What the panel looks at: a configuration, its line, and the simulated drives of a demonstration.
#include "panel/app/plant.h"

#include "cli/console/filled.h"
#include "host/link/plugin.h"

#include <QStringList>

#include <utility>

namespace dx4::panel {
namespace {

constexpr quint16 demoFrequency = 3000; // 0.01 Hz
const QString demoFile = QStringLiteral(":/panel/demo.toml");

QString allOf(const QVector<host::ConfigError> &errors, const QString &file)
{
    QStringList lines;
    for (const host::ConfigError &error : errors)
        lines.append(error.in(file));
    return lines.join(QLatin1Char('\n'));
}

/// Configuration and control of the plant.
bool readConfig(const Options &options, Plant *plant, cli::Failure *failure)
{
    const QString file = options.demo ? demoFile : options.config;
    QVector<host::ConfigError> errors;
    const auto config = host::loadConfig(file, &errors);
    const auto control = config ? host::loadControl(file, &errors) : std::nullopt;
    if (!config || !control)
        return cli::fail(failure, allOf(errors, file));
    if (!config->stop.controlWord)
        return cli::fail(failure,
                         cli::filled("%1: [stop] has no control_word; the stop button needs the "
                                     "value of CW that stops a drive",
                                     file));
    if (control->run == config->stop.controlWord)
        return cli::fail(failure,
                         cli::filled("%1: the control_word of [stop] starts drives; write under "
                                     "[control] the run that does",
                                     file));
    plant->config = *config;
    plant->control = *control;
    return true;
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

/// Simulated drives begin with a frequency of 0: started, they would seem to stand.
void giveFrequencies(host::LineService &service, const host::Config &config)
{
    QObject::connect(&service, &host::LineService::lineOpened, &service, [&service, config] {
        for (const host::StationConfig &station : config.stations) {
            host::WriteWish wish;
            wish.station = station.address;
            wish.regType = QStringLiteral("FRE");
            wish.values = { demoFrequency };
            service.submit(wish);
        }
    });
}

/// A serial line whose frames can be looked at.
host::LineFactory tappedLine(const host::Config &config, const QString &driver,
                             const std::shared_ptr<host::FrameTap> &tap)
{
    return [make = host::serialLine(config.line, driver), tap] {
        host::LineParts parts = make();
        if (parts.line)
            parts.line = std::make_unique<host::TappingLine>(std::move(parts.line), tap);
        return parts;
    };
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
    Plant plant;
    if (!readConfig(options, &plant, failure))
        return std::nullopt;
    const auto plan = makePlan(options, plant.config, driver.path, failure);
    if (!plan)
        return std::nullopt;
    if (options.demo) {
        plant.simulator = startSimulator(options, plant.config, failure);
        if (!plant.simulator)
            return std::nullopt;
    }
    host::ServiceSettings settings = host::serviceSettings(plant.config, *plan);
    settings.runtime.userPatience = plant.control.userPatience;
    plant.tap = std::make_shared<host::FrameTap>();
    plant.service = std::make_unique<host::LineService>(
        tappedLine(plant.config, driver.path, plant.tap), settings);
    if (options.demo)
        giveFrequencies(*plant.service, plant.config);
    return plant;
}

} // namespace dx4::panel
