// SPDX-License-Identifier: MIT
// The line that a command works on: options, and the configuration behind them.
#include "cli/line/line_options.h"

#include "cli/line/driver_file.h"
#include "cli/registers/target.h"
#include "host/config/config.h"
#include "wire/limits.h"

#include <QStandardPaths>

#include <algorithm>

namespace dx4::cli {
namespace {

/// In the order of host::Parity.
QString parityLetters()
{
    return QStringLiteral("NEO");
}

/// Fills in what was not given.
void fillIn(LineOptions &options, const host::Config &config)
{
    if (options.port.isEmpty())
        options.port = config.line.port;
    if (options.port.isEmpty())
        options.port = qEnvironmentVariable("DX4_PORT");
    if (options.format.isEmpty())
        options.format = formatText(config.line);
    if (options.speed == 0)
        options.speed = config.line.speed;
    if (options.timeout == 0)
        options.timeout =
            static_cast<int>(config.line.responseTimeout / std::chrono::milliseconds(1));
    if (options.retries < 0)
        options.retries = config.link.retryLimit - 1; // the driver counts the first try too
    if (options.block == 0)
        options.block = config.link.blockSize;
    for (const host::StationConfig &station : config.stations) {
        for (const host::RegisterConfig &entry : station.registers)
            options.registers.append(filled("%1:%2", station.address, entry.at));
    }
}

/// Puts what was given in place of what the configuration says.
void complete(LineOptions &options, const host::Config &config)
{
    fillIn(options, config);
    host::Config &plant = options.plant;
    plant = config;
    plant.line.port = options.port;
    plant.line.speed = options.speed;
    plant.line.parity = *parityOf(options.format.mid(1, 1));
    plant.line.stopBits = options.format.endsWith(QLatin1Char('2')) ? 2 : 1;
    plant.line.responseTimeout = std::chrono::milliseconds(options.timeout);
    plant.line.isShared = options.shared || config.line.isShared;
    plant.link.retryLimit = options.retries + 1;
    plant.link.blockSize = options.block;
}

/// The options that say which line it is, as they were given.
QStringList linePlace(const LineOptions &options)
{
    QStringList given;
    const auto add = [&given](const char *option, const QString &value) {
        if (!value.isEmpty())
            given << QString::fromLatin1(option) << value;
    };
    add("--driver", options.driver);
    add("--config", options.config);
    add("--speed", options.speed == 0 ? QString() : QString::number(options.speed));
    add("--format", options.format);
    if (options.shared)
        given << QStringLiteral("--shared");
    return given;
}

/// "station 2" or "stations 1 and 2".
QString stationsText(const host::Config &config)
{
    QStringList addresses;
    for (const host::StationConfig &station : config.stations)
        addresses.append(QString::number(station.address));
    if (addresses.size() == 1)
        return filled("station %1", addresses.constFirst());
    const QString last = addresses.takeLast();
    return filled("stations %1 and %2", addresses.join(QStringLiteral(", ")), last);
}

/// Where a configuration has one station alone, that is meant; of several, none is. Without a
/// configuration it is the first.
void chooseStation(LineOptions &options, const host::Config &config)
{
    if (options.stationIsGiven)
        return;
    if (config.stations.isEmpty())
        options.station = 1;
    else
        options.station = config.stations.size() == 1 ? config.stations.constFirst().address : 0;
}

/// A configuration that no option names, and what names it.
struct UsualConfig {
    QString file;
    QString origin;
};

/// The working folder is not among the places: a file that lies about there must not give stops and
/// scaling.
UsualConfig usualConfig()
{
    if (qEnvironmentVariableIsSet("DX4_CONFIG"))
        return { qEnvironmentVariable("DX4_CONFIG"),
                 QStringLiteral("is named by the variable DX4_CONFIG") };
    return { QStandardPaths::locate(QStandardPaths::GenericConfigLocation,
                                    QStringLiteral("dx4/dx4.toml")),
             QStringLiteral("is the usual configuration; DX4_CONFIG= goes without one") };
}

int readConfiguration(LineOptions &options)
{
    const UsualConfig usual = options.config.isEmpty() ? usualConfig() : UsualConfig();
    if (options.config.isEmpty())
        options.config = usual.file;
    options.given = linePlace(options);
    if (options.config.isEmpty()) {
        complete(options, host::Config());
        chooseStation(options, host::Config());
        return ExitDone;
    }
    QVector<host::ConfigError> errors;
    const auto config = host::loadConfig(options.config, &errors);
    for (const host::ConfigError &error : std::as_const(errors))
        complain({ ExitUsage, error.in(options.config) });
    if (!config && !usual.file.isEmpty())
        note(filled("%1 %2", options.config, usual.origin));
    if (!config)
        return ExitUsage;
    complete(options, *config);
    chooseStation(options, *config);
    return ExitDone;
}

} // namespace

UsualStation usualStation(const LineOptions &options)
{
    if (options.station > 0)
        return { options.station };
    return { 0, filled("%1 has %2", options.config, stationsText(options.plant)) };
}

bool namesStation(const LineOptions &options, Failure *failure)
{
    if (options.station > 0)
        return true;
    return fail(
        failure,
        filled("%1 has %2; name one with --station", options.config, stationsText(options.plant)));
}

bool mayDrive(const LineOptions &options, int station, Failure *failure)
{
    const QVector<host::StationConfig> &all = options.plant.stations;
    const bool isKnown = std::any_of(all.cbegin(), all.cend(),
                                     [&](const auto &known) { return known.address == station; });
    if (station == 0)
        return namesStation(options, failure);
    if (isKnown || all.isEmpty())
        return true;
    return fail(
        failure,
        filled("station %1 is not in %2, which has %3; name one of the file, or leave --config out",
               station, options.config, stationsText(options.plant)));
}

void addLineOptions(Command &command, LineOptions &options)
{
    // A command may bring values of its own, which the help shows and which go before the file's.
    const bool hasTimeout = options.timeout > 0;
    const bool hasRetries = options.retries >= 0;
    command.text("--config", options.config,
                 "TOML file with line, stations, registers; else the usual one", "FILE");
    command.text("--port", options.port, "serial port; else the file's, or DX4_PORT", "DEVICE");
    command.number("--speed", options.speed, "bit/s; else the file's, or 9600", slowestSpeed,
                   fastestSpeed);
    command.choice("--format", options.format,
                   "data bits, parity, stop bits; else the file's, or 8N1",
                   "8N1|8N2|8E1|8E2|8O1|8O2");
    command.number("--station", options.station,
                   "of addresses that name none; else the file's, or 1", 1, lastStation,
                   &options.stationIsGiven);
    command.number("--timeout", options.timeout,
                   hasTimeout ? "ms until a reply must begin"
                              : "ms until a reply must begin; else the file's, or 300",
                   1, 60000);
    command.number("--retries", options.retries,
                   hasRetries ? "repetitions of a failed request"
                              : "repetitions of a failed request; else the file's, or 2",
                   0, 100);
    command.number("--block", options.block,
                   "most registers of one request; else the file's, or 16", 1, largestBlock);
    command.flag("--shared", options.shared, "also where another program has the port open");
    command.flag("--json", options.json, "print one JSON object per line");
    addTraceOption(command, options.trace);
    addDriverOption(command, options.driver);
    command.offer("--config", tomlFile);
    command.offer("--speed", "9600 19200 38400 57600 115200");
    command.offer("--station", anyStation);
    command.prepare([&options] { return readConfiguration(options); });
}

QString formatText(const host::LineSettings &line)
{
    return filled("8%1%2", parityLetters().at(static_cast<int>(line.parity)), line.stopBits);
}

std::optional<host::Parity> parityOf(const QString &letter)
{
    const auto place = letter.size() == 1 ? parityLetters().indexOf(letter) : -1;
    return place < 0 ? std::nullopt : std::optional(static_cast<host::Parity>(place));
}

void addTraceOption(Command &command, bool &trace)
{
    command.flag("-v,--trace", trace, "show every frame on standard error");
}

} // namespace dx4::cli
