// SPDX-License-Identifier: MIT
// What a host is to do, read from a TOML file.
#include "host/config/config.h"

#include "host/base/whole_file.h"
#include "host/config/config_table.h"
#include "host/config/control_config.h"
#include "host/link/address_range.h"
#include "wire/limits.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace dx4::host {
namespace {

constexpr int mostTries = 100;
constexpr int longestTimeoutMs = 60'000;
constexpr int longestGapMs = 1'000;
constexpr int shortestPatienceMs = 1'000; // windows tell of their user four times as often
constexpr int mostDecimals = 6;
constexpr int highestBit = 15;
constexpr int highestCode = 0xFFFF;

void readLine(ConfigTable table, LineSettings &line)
{
    table.text("port", "/dev/serial/by-id/usb-...", line.port);
    table.integer("speed", 300, 4'000'000, line.speed);
    table.choice<Parity>(
        "parity", { { "none", Parity::None }, { "even", Parity::Even }, { "odd", Parity::Odd } },
        line.parity);
    table.integer("stop_bits", 1, 2, line.stopBits);
    table.milliseconds("timeout_ms", 1, longestTimeoutMs, line.responseTimeout);
    table.choice<GapRule>(
        "gap", { { "standard", GapRule::Standard }, { "3.5 characters", GapRule::Characters } },
        line.gap);
    table.choice<EchoMode>(
        "echo", { { "auto", EchoMode::Auto }, { "yes", EchoMode::Yes }, { "no", EchoMode::No } },
        line.echo);
    table.flag("rs485", line.kernelSwitchesDirection);
    table.flag("shared", line.isShared);
    table.refuseTheRest();
}

void readLink(ConfigTable table, LinkSettings &link)
{
    table.integer("tries", 1, mostTries, link.retryLimit);
    table.integer("block_size", 1, largestBlock, link.blockSize);
    table.refuseTheRest();
}

/// All that a file says.
struct Whole {
    Config config;
    ControlConfig control;
};

void readStop(ConfigTable table, StopPolicy &stop, ControlConfig &control)
{
    int word = -1;
    table.integer("control_word", 0, 0xFFFF, word);
    if (word >= 0)
        stop.controlWord = static_cast<quint16>(word);
    table.milliseconds("confirm_ms", 1, longestTimeoutMs, stop.confirmWithin);
    table.flag("broadcast", stop.broadcast);
    if (stop.broadcast && !table.has("control_word"))
        table.wrong("broadcast", QStringLiteral("there is no control_word to send"));
    table.milliseconds("user_patience_ms", shortestPatienceMs, longestTimeoutMs,
                       control.userPatience);
    if (table.has("user_patience_ms") && !table.has("control_word"))
        table.wrong("user_patience_ms", QStringLiteral("there is no control_word to send"));
    table.refuseTheRest();
}

void readControl(ConfigTable table, ControlConfig &control)
{
    int run = control.run;
    int reverse = -1;
    table.integer("run", 0, 0xFFFF, run);
    table.integer("reverse", 0, 0xFFFF, reverse);
    control.run = static_cast<quint16>(run);
    if (reverse >= 0)
        control.reverse = static_cast<quint16>(reverse);
    table.refuseTheRest();
}

/// A start by the word that stops would never be seen to fail.
void refuseStartsThatStop(ConfigTable table, const Whole &whole)
{
    const auto &stop = whole.config.stop.controlWord;
    if (stop == whole.control.run && table.has("run"))
        table.wrong("run", QStringLiteral("is the control_word that stops"));
    if (stop && whole.control.reverse == stop)
        table.wrong("reverse", QStringLiteral("is the control_word that stops"));
}

RegisterConfig readRegister(ConfigTable table)
{
    RegisterConfig result;
    result.line = table.line();
    table.text("at", "D 0-9", result.at);
    table.text("name", "output frequency", result.name);
    table.text("unit", "Hz", result.scaling.unit);
    table.number("scale", result.scaling.factor);
    table.number("offset", result.scaling.offset);
    table.flag("signed", result.scaling.isSigned);
    table.integer("decimals", 0, mostDecimals, result.scaling.decimals);
    table.refuseTheRest();

    QString why;
    const auto range = parseRange(result.at, &why);
    if (!table.has("at"))
        table.wrong("at", QStringLiteral("is missing; expected a text such as \"D 0-9\""));
    else if (!result.at.isEmpty() && !range)
        table.wrong("at", why);
    else if (range && range->count > 1 && !result.name.isEmpty())
        table.wrong("name", QStringLiteral("stands for one register; give each its own entry"));
    if (result.scaling.factor == 0.0)
        table.wrong("scale", QStringLiteral("expected a number other than 0"));
    return result;
}

StationConfig readStation(ConfigTable table, QVector<ConfigError> &errors)
{
    StationConfig station;
    table.integer("address", 1, lastStation, station.address);
    table.text("name", "pump", station.name);
    table.milliseconds("extra_gap_ms", 0, longestGapMs, station.extraGap);
    QSet<QString> names;
    for (const toml::table *entry : table.tables("register", "station.register")) {
        ConfigTable reader(entry, errors);
        station.registers.append(readRegister(reader));
        const QString &name = station.registers.constLast().name;
        if (!name.isEmpty() && names.contains(name))
            reader.wrong("name", QStringLiteral("\"%1\" is taken within the station").arg(name));
        names.insert(name);
    }
    table.refuseTheRest();
    if (!table.has("address"))
        table.wrong("address", QStringLiteral("is missing; expected a whole number from 1 to 247"));
    return station;
}

void readStations(ConfigTable &root, Config &config, QVector<ConfigError> &errors)
{
    for (const toml::table *entry : root.tables("station", "station")) {
        ConfigTable table(entry, errors);
        const StationConfig station = readStation(table, errors);
        for (const StationConfig &other : std::as_const(config.stations)) {
            if (table.has("address") && other.address == station.address)
                table.wrong("address",
                            QStringLiteral("station %1 stands here twice").arg(station.address));
            if (!station.name.isEmpty() && other.name == station.name)
                table.wrong("name", QStringLiteral("\"%1\" is taken").arg(station.name));
        }
        config.stations.append(station);
    }
    if (!root.has("station"))
        errors.append({ 0, QStringLiteral("no station; begin one by [[station]]") });
}

void readRoot(const toml::table &file, Whole &whole, QVector<ConfigError> &errors)
{
    ConfigTable root(&file, errors);
    Config &config = whole.config;
    readLine({ root.table("line"), errors }, config.line);
    readLink({ root.table("link"), errors }, config.link);
    readStop({ root.table("stop"), errors }, config.stop, whole.control);
    const toml::table *control = root.table("control");
    readControl({ control, errors }, whole.control);
    refuseStartsThatStop({ control, errors }, whole);
    readStations(root, config, errors);
    ConfigTable(root.table("states"), errors).textsByNumber(highestBit, config.states);
    ConfigTable(root.table("faults"), errors).textsByNumber(highestCode, config.faults);
    root.refuseTheRest();
}

/// Texts quote the file, which may break off in the middle of a word or have line breaks in a key:
/// such a character is left out at the end of a quotation and is a space elsewhere.
QString onOneLine(QString text)
{
    static const QRegularExpression atTheEnd(QStringLiteral("[\\p{C}\\p{Zl}\\p{Zp}]+(?=['\"])"));
    static const QRegularExpression anywhere(QStringLiteral("[\\p{C}\\p{Zl}\\p{Zp}]+"));
    return text.remove(atTheEnd).replace(anywhere, QStringLiteral(" "));
}

void report(const QVector<ConfigError> &found, QVector<ConfigError> *errors)
{
    if (!errors)
        return;
    for (const ConfigError &error : found)
        errors->append({ error.line, onOneLine(error.text) });
}

std::optional<Whole> parseWhole(const QByteArray &text, QVector<ConfigError> *errors)
{
    Whole whole;
    QVector<ConfigError> found;
    try {
        readRoot(
            toml::parse(std::string_view(text.constData(), static_cast<std::size_t>(text.size()))),
            whole, found);
    } catch (const toml::parse_error &error) {
        const std::string_view what = error.description();
        found.append({ static_cast<int>(error.source().begin.line),
                       QString::fromUtf8(what.data(), static_cast<int>(what.size())) });
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const ConfigError &a, const ConfigError &b) { return a.line < b.line; });
    report(found, errors);
    return found.isEmpty() ? std::optional<Whole>(whole) : std::nullopt;
}

/// The text of a file; one that cannot be read is an error of line 0.
std::optional<QByteArray> readText(const QString &path, QVector<ConfigError> *errors)
{
    QString why;
    const auto text = readWholeFile(path, &why);
    if (!text && errors)
        errors->append({ 0, why });
    return text;
}

} // namespace

QString ConfigError::in(const QString &file) const
{
    return line > 0 ? QStringLiteral("%1:%2: %3").arg(file).arg(line).arg(text)
                    : QStringLiteral("%1: %2").arg(file, text);
}

std::optional<Config> parseConfig(const QByteArray &text, QVector<ConfigError> *errors)
{
    const auto whole = parseWhole(text, errors);
    return whole ? std::optional<Config>(whole->config) : std::nullopt;
}

std::optional<Config> loadConfig(const QString &path, QVector<ConfigError> *errors)
{
    const auto text = readText(path, errors);
    return text ? parseConfig(*text, errors) : std::nullopt;
}

std::optional<ControlConfig> parseControl(const QByteArray &text, QVector<ConfigError> *errors)
{
    const auto whole = parseWhole(text, errors);
    return whole ? std::optional<ControlConfig>(whole->control) : std::nullopt;
}

std::optional<ControlConfig> loadControl(const QString &path, QVector<ConfigError> *errors)
{
    const auto text = readText(path, errors);
    return text ? parseControl(*text, errors) : std::nullopt;
}

std::optional<Plan> planOf(const Config &config, Planner &planner, QVector<ConfigError> *errors)
{
    QVector<PlanEntry> entries;
    QVector<ConfigError> found;
    for (const StationConfig &station : config.stations) {
        for (const RegisterConfig &wanted : station.registers) {
            QString why;
            entries.append({ station.address, wanted.at });
            if (!planner.make({ entries.constLast() }, &why))
                found.append({ wanted.line, why });
        }
    }
    QString why;
    std::optional<Plan> plan = planner.make(entries, &why);
    if (!plan && found.isEmpty())
        found.append({ 0, why });
    report(found, errors);
    return plan;
}

} // namespace dx4::host
