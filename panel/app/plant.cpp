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

MakePlan planMaker(const QString &driver)
{
    return [driver](const host::Config &config,
                    QVector<host::ConfigError> *errors) -> std::optional<host::Plan> {
        QString error;
        auto scratch = host::Plugin::load(driver, host::Plugin::Instance::PrivateCopy, &error);
        if (!scratch) {
            errors->append({ 0, error });
            return std::nullopt;
        }
        host::Planner planner(std::move(scratch), config.link);
        return host::planOf(config, planner, errors);
    };
}

/// The driver's file, which can be loaded.
std::optional<QString> findDriver(const Options &options, cli::Failure *failure)
{
    const host::DriverFile driver = host::locateDriver(options.driver);
    if (driver.path.isEmpty())
        return cli::refuse(failure,
                           cli::filled("the driver libkorvane_dx4.so not found; looked for %1; "
                                       "name it with --driver",
                                       driver.tried.join(QStringLiteral(", "))),
                           cli::ExitFailed);
    QString error;
    if (!host::Plugin::load(driver.path, host::Plugin::Instance::PrivateCopy, &error))
        return cli::refuse(failure, error, cli::ExitFailed);
    return driver.path;
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
    const auto driver = findDriver(options, failure);
    if (!driver)
        return std::nullopt;
    Plant plant;
    plant.makePlan = planMaker(*driver);
    const QString file = options.demo ? demoFile : options.config;
    plant.running = checkConfig(file, plant.makePlan);
    if (!plant.running.isWhole())
        return cli::refuse(failure, allOf(plant.running.errors, file));
    host::Config &config = plant.running.config;
    if (options.demo) {
        plant.simulator = startSimulator(options, config, failure);
        if (!plant.simulator)
            return std::nullopt;
    }
    host::ServiceSettings settings = host::serviceSettings(config, plant.running.plan);
    settings.runtime.userPatience = plant.running.control.userPatience;
    plant.tap = std::make_shared<host::FrameTap>();
    plant.service =
        std::make_unique<host::LineService>(tappedLine(config, *driver, plant.tap), settings);
    if (options.demo)
        giveFrequencies(*plant.service, config);
    return plant;
}

} // namespace dx4::panel
