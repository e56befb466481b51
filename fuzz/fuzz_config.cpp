// SPDX-License-Identifier: MIT
// Any bytes as a configuration file: a configuration within its limits, or what is wrong and where.
#include "expect.h"
#include "fuzz_target.h"
#include "host/config/config.h"

#include <algorithm>
#include <set>

using namespace dx4::host;

namespace {

void expectErrorsToBeTold(const QVector<ConfigError> &errors, const QByteArray &text)
{
    const int lines = static_cast<int>(text.count('\n')) + 1;
    for (const ConfigError &error : errors) {
        expect(error.line >= 0 && error.line <= lines, "an error is of a line of the file");
        expect(!error.text.isEmpty(), "an error says what is wrong");
        expect(!error.in(QStringLiteral("f")).contains(QLatin1Char('\n')), "an error is one line");
    }
}

void expectLimits(const Config &config)
{
    std::set<int> stations;
    for (const StationConfig &station : config.stations) {
        expect(station.address >= 1 && station.address <= 247, "stations are 1 to 247");
        expect(stations.insert(station.address).second, "no station stands twice");
        expect(station.extraGap >= Duration { 0 }, "no gap is negative");
        for (const RegisterConfig &wanted : station.registers)
            expect(wanted.line >= 1, "a register has its line");
    }
    expect(config.line.speed > 0 && config.line.responseTimeout > Duration { 0 },
           "speed and timeout are positive");
    expect(config.link.blockSize >= 1 && config.link.blockSize <= 123, "blocks are 1 to 123");
    expect(config.stop.confirmWithin >= Duration { 0 }, "no time to stop is negative");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    QVector<ConfigError> errors;

    const auto config = parseConfig(text, &errors);

    expect(config.has_value() == errors.isEmpty(), "there is a configuration or an error");
    expectErrorsToBeTold(errors, text);
    if (config)
        expectLimits(*config);
    return 0;
}
