// SPDX-License-Identifier: MIT
// dx4 copies: stepped copies of an address.
#include "cli/commands/commands.h"

#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/registers/target.h"
#include "cli/registers/value_output.h"
#include "host/base/length.h"
#include "host/link/notation.h"

namespace dx4::cli {
namespace {

constexpr int mostCopies = 10000;
constexpr int largestStep = 1000;

struct Options {
    QString driver;
    QStringList words;
    int count = 2;
    int step = 1;
    bool json = false;
};

/// An access that the type allows: what can only be written is copied as well.
AccessMode allowedAccess(const QString &regType, const host::DriverApi &api)
{
    int address = 0;
    const int code = api.checkAddr(regType, QStringLiteral("0"), &address, 0, 1, ReadAccess);
    return code == AddressWriteOnly ? WriteAccess : ReadAccess;
}

std::optional<Target> firstCopy(const Options &options, const host::DriverApi &api,
                                Failure *failure)
{
    const auto texts = splitTargets(options.words, 1, failure);
    if (!texts)
        return std::nullopt;
    const QString regType = texts->constFirst().text.section(QLatin1Char(' '), 0, 0);
    const auto targets = parseTargets(options.words, 1, allowedAccess(regType, api), api, failure);
    if (targets && targets->size() == 1)
        return targets->constFirst();
    if (targets)
        return refuse(failure, QStringLiteral("one address is copied at a time"));
    return std::nullopt;
}

void printCopy(const Options &options, const QString &regType, int number, int address)
{
    const Facts facts = registerFacts(regType, address)
        + Facts { { "copy", number }, { "address", address, host::fullAddress(regType, address) } };
    print(options.json, facts, "{address}");
}

int runCopies(const Options &options, std::unique_ptr<host::Plugin> plugin)
{
    Failure failure;
    const auto first = firstCopy(options, plugin->api(), &failure);
    if (!first)
        return complain(failure);
    QVector<QString> texts;
    QVector<int> addresses;
    const int result = plugin->api().multiCopy(first->regType, first->address, options.count,
                                               options.step, &texts, &addresses);
    for (int i = 0; i < host::lengthOf(addresses); ++i)
        printCopy(options, first->regType, i, addresses.at(i));
    if (result == CopyClamped)
        note(QStringLiteral("some copies reached the end and stay at the highest address"));
    return ExitDone;
}

} // namespace

void describeCopies(Command &command)
{
    Options &options = driverAction(command, runCopies);
    command.words("address", options.words, "type and address of the first copy", anyRegister);
    command.number("--count", options.count, "copies, the first one included", 1, mostCopies);
    command.number("--step", options.step, "registers from one copy to the next", 1, largestStep);
    command.flag("--json", options.json, "print one JSON object per copy");
    addDriverOption(command, options.driver);
    command.example("dx4 copies F 0.16 --count 5 --step 1",
                    "on from the end of group 0 into group 1");
}

} // namespace dx4::cli
