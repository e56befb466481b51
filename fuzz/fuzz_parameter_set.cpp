// SPDX-License-Identifier: MIT
// Any bytes as a parameter file: a set that comes back from its text, or an error with its line.
#include "expect.h"
#include "fuzz_target.h"
#include "host/parameters/parameter_set.h"

using namespace dx4::host;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QVector<int> known = allParameters();
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    QString error;

    const auto set = parseParameterSet(text, &error);

    expect(set.has_value() == error.isEmpty(), "there is a set or an error");
    expect(!error.contains(QLatin1Char('\n')), "an error is one line");
    if (!set)
        return 0;
    expect(set->station >= 1 && set->station <= 247, "stations are 1 to 247");
    for (auto value = set->values.begin(); value != set->values.end(); ++value) {
        expect(known.contains(value.key()), "only registers that the drive has");
        expect(!set->refused.contains(value.key()), "a register has a value or was refused");
    }
    const auto again = parseParameterSet(toText(*set), &error);
    expect(again && *again == *set, "a set comes back from its text");
    return 0;
}
