// SPDX-License-Identifier: MIT
// dx4 check: the driver's verdict on an address.
#include "cli/commands/commands.h"

#include "cli/console/nearest_word.h"
#include "cli/console/output.h"
#include "cli/line/driver_file.h"
#include "cli/registers/target.h"
#include "host/link/address_verdict.h"
#include "host/link/notation.h"

namespace dx4::cli {
namespace {

constexpr int mostRegisters = 65535;

struct Options {
    QString driver;
    QStringList words;
    int count = 1;
    bool read = false;
    bool write = false;
    bool json = false;
};

AccessMode accessMode(const Options &options)
{
    if (options.read && options.write)
        return ReadWriteAccess;
    return options.write ? WriteAccess : ReadAccess;
}

constexpr const char *accessNames[] = { "read", "write", "read, write" }; // by AccessMode

struct Verdict {
    QString regType;
    QString addrText;
    int address = 0;
    int code = AddressAccepted;
    QString words;
};

Verdict judge(const host::DriverApi &api, const Options &options)
{
    // The driver gets the text as it was typed: what it makes of it is the question.
    const QStringList parts =
        options.words.join(QLatin1Char(' ')).simplified().split(QLatin1Char(' '));
    Verdict verdict;
    verdict.regType = parts.constFirst();
    verdict.addrText = parts.mid(1).join(QLatin1Char(' '));
    verdict.code = api.checkAddr(verdict.regType, verdict.addrText, &verdict.address, 0,
                                 options.count, accessMode(options));
    const bool beyond = verdict.code == AddressOutOfRange;
    verdict.words = host::addressVerdictText(verdict.code, verdict.regType,
                                             verdict.address + (beyond ? options.count - 1 : 0));
    if (!host::registerTypeNames().contains(verdict.regType))
        verdict.words += suggestion(verdict.regType, host::registerTypeNames());
    return verdict;
}

int runCheck(const Options &options, std::unique_ptr<host::Plugin> plugin)
{
    const Verdict verdict = judge(plugin->api(), options);
    const bool accepted = verdict.code == AddressAccepted;
    const QString blank = verdict.addrText.isEmpty() ? QString() : QStringLiteral(" ");
    print(options.json,
          { { "type", verdict.regType },
            { "text", verdict.addrText, blank + verdict.addrText },
            { "count", options.count },
            { "access", QLatin1String(accessNames[accessMode(options)]) },
            { "code", verdict.code },
            { "verdict", verdict.words },
            { "address", valueIf(accepted, verdict.address) },
            { "register",
              valueIf(accepted, host::modbusRegister(verdict.regType, verdict.address)) } },
          "{code}: {type}{text}, count {count}, {access}: {verdict}");
    return accepted ? ExitDone : ExitUsage;
}

} // namespace

void describeCheck(Command &command)
{
    Options &options = driverAction(command, runCheck);
    command.words("address", options.words, "type and address, such as F c.13", anyRegister);
    command.number("--count", options.count, "registers from the address on", 1, mostRegisters);
    command.flag("--read", options.read, "to be read; so it is when neither is given");
    command.flag("--write", options.write, "to be written");
    command.flag("--json", options.json, "print one JSON object");
    addDriverOption(command, options.driver);
    command.example("dx4 check F c.13 --write", "0 and the register: it can be written");
    command.example("dx4 check F c.13 --count 2",
                    "2: the second register is past the end of the group");
}

} // namespace dx4::cli
