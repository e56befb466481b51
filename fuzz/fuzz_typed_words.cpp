// SPDX-License-Identifier: MIT
// Any words as registers that somebody types, with the driver's own checks behind them.
#include "cli/registers/target.h"
#include "driver_api.h"
#include "expect.h"
#include "fuzz_target.h"
#include "host/link/address_verdict.h"
#include "host/link/notation.h"

using namespace dx4::cli;

namespace {

dx4::host::DriverApi linkedChecks()
{
    dx4::host::DriverApi api;
    api.checkAddr = intf_checkAddr;
    return api;
}

void expectPossible(const Target &target, dx4::AccessMode mode, const dx4::host::DriverApi &api)
{
    expect(target.station >= 1 && target.station <= 247, "stations are 1 to 247");
    expect(target.count >= 1, "a run has a register");
    expect(dx4::host::registerTypeNames().contains(target.regType),
           "the type is one of the driver's");

    const QString shown = QString::number(target.station) + QLatin1Char(':') + target.regType
        + QLatin1Char(' ') + dx4::host::addressText(target.regType, target.address);
    Failure failure;
    const auto again = parseTargets({ shown }, 0, mode, api, &failure);
    expect(again && again->size() == 1, "what is shown can be typed");
    expect(again->constFirst().address == target.address
               && again->constFirst().station == target.station,
           "what is typed is what was shown");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    static const dx4::host::DriverApi api = linkedChecks();
    const auto mode = (data[0] & 1U) ? dx4::WriteAccess : dx4::ReadAccess;
    const UsualStation usual((data[0] & 2U) ? 0 : 1, QStringLiteral("two stations are there"));
    const QStringList words =
        QString::fromUtf8(reinterpret_cast<const char *>(data + 1), static_cast<int>(size - 1))
            .split(QLatin1Char('\n'));

    Failure failure;
    const auto targets = parseTargets(words, usual, mode, api, &failure);
    expect(targets.has_value() || !failure.text.isEmpty(), "a refusal has its reason");
    if (!targets)
        return 0;
    expect(!targets->isEmpty(), "no words are no registers");
    for (const Target &target : *targets)
        expectPossible(target, mode, api);
    return 0;
}
