// SPDX-License-Identifier: MIT
// dx4 types: the driver's catalogue of register types.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "host/link/notation.h"
#include "register_tables.h"

#include <QJsonArray>

namespace dx4::cli {
namespace {

constexpr int everyType = 1;

struct Options {
    QString driver;
    bool json = false;
};

QString accessText(const QString &code)
{
    if (code == QLatin1String("0"))
        return QStringLiteral("read");
    return code == QLatin1String("2") ? QStringLiteral("write") : QStringLiteral("read, write");
}

/// The last address from `first` on that the driver's check accepts, found by asking it.
int lastAccepted(const host::DriverApi &api, const QString &regType, int first)
{
    int last = first;
    int converted = 0;
    while (api.checkAddrValidity(regType, host::addressText(regType, first), &converted,
                                 last - first + 2, 1)
           == AddressAccepted)
        ++last;
    return last;
}

/// First and last address of each run that the driver accepts.
QVector<QPair<int, int>> acceptedRuns(const host::DriverApi &api, const QString &regType)
{
    QVector<QPair<int, int>> runs;
    const int groups = regType == REG_LIST[TypeF] ? parameterGroupCount : 1;
    for (int group = 0; group < groups; ++group) {
        const int first = group * indexesPerGroup;
        runs.append({ first, lastAccepted(api, regType, first) });
    }
    return runs;
}

/// A row of the catalogue.
Facts catalogueFacts(const host::DriverApi &api, const QString &regType)
{
    QList<QString> texts;
    api.getRegDiscription(regType, &texts);
    return { { "type", regType },
             { "format", texts.value(FormatColumn) },
             { "lowest", texts.value(LowestColumn) },
             { "highest", texts.value(HighestColumn) },
             { "access", accessText(texts.value(AccessColumn)) } };
}

void printAsJson(const host::DriverApi &api, const QString &regType)
{
    QJsonArray runs;
    for (const auto &run : acceptedRuns(api, regType))
        runs.append(jsonOf({ { "first", host::addressText(regType, run.first) },
                             { "last", host::addressText(regType, run.second) },
                             { "firstRegister", host::modbusRegister(regType, run.first) } }));
    printJson(catalogueFacts(api, regType) + Facts { { "accepted", runs } });
}

void printAsTable(const host::DriverApi &api, const QList<QString> &types)
{
    QVector<QStringList> catalogue { { QStringLiteral("Type"), QStringLiteral("Format"),
                                       QStringLiteral("Lowest"), QStringLiteral("Highest"),
                                       QStringLiteral("Access") } };
    QVector<QStringList> accepted { { QStringLiteral("Accepted from"), QStringLiteral("to") } };
    for (const QString &regType : types) {
        catalogue.append(cellsOf(catalogueFacts(api, regType)));
        for (const auto &run : acceptedRuns(api, regType))
            accepted.append(
                { host::fullAddress(regType, run.first), host::fullAddress(regType, run.second) });
    }
    printLines(columns(catalogue));
    printLine(QString());
    printLines(columns(accepted));
}

int runTypes(const Options &options, std::unique_ptr<host::Plugin> plugin)
{
    QList<QString> types;
    plugin->api().getRegListByType(everyType, &types);
    if (!options.json)
        printAsTable(plugin->api(), types);
    for (const QString &regType : std::as_const(types)) {
        if (options.json)
            printAsJson(plugin->api(), regType);
    }
    return ExitDone;
}

} // namespace

void describeTypes(Command &command)
{
    Options &options = driverAction(command, runTypes);
    addDriverOption(command, options.driver);
    command.flag("--json", options.json, "print one JSON object per type");
    command.example("dx4 types", "the catalogue");
    command.example("dx4 types --json", "the same for a script");
}

} // namespace dx4::cli
