// SPDX-License-Identifier: MIT
// Register values that were read or written, as text and as JSON.
#include "cli/registers/value_output.h"

#include "cli/console/output.h"
#include "host/base/length.h"
#include "host/link/notation.h"

namespace dx4::cli {
namespace {

constexpr int addressWidth = 16;
constexpr int valueWidth = 6;

/// What was read, without scaling: the register, or the number of a pair.
QString numberText(const WatchedValue &what, quint32 value)
{
    return what.pair.kind == Pair::Kind::None ? QString::number(value) : what.pair.text(value);
}

QString valueLine(const WatchedValue &what, quint32 value, const QString &outcome)
{
    QString line =
        QStringLiteral("%1  %2 %3  %4")
            .arg(what.station, 3)
            .arg(host::fullAddress(what.regType, what.address).leftJustified(addressWidth))
            .arg(numberText(what, value).rightJustified(valueWidth))
            .arg(hex(value, 4 * what.pair.length()));
    if (isNamedOrScaled(what))
        line +=
            QStringLiteral("  ") + filled("%1 %2", what.name, quantityText(what, value)).trimmed();
    const QString meaning = meaningText(what, value);
    if (!meaning.isEmpty())
        line += QStringLiteral("  ") + meaning;
    if (!outcome.isEmpty())
        line += QStringLiteral("  ") + outcome;
    return line.trimmed();
}

} // namespace

Facts registerFacts(const QString &regType, int address)
{
    const int number = host::modbusRegister(regType, address);
    return { { "type", regType },
             { "text", host::addressText(regType, address) },
             { "register", number, hex(static_cast<unsigned>(number), 4) } };
}

Facts registerFacts(int station, const QString &regType, int address)
{
    return Facts { { "station", station } } + registerFacts(regType, address);
}

Facts valueFacts(const WatchedValue &what, std::optional<quint32> value)
{
    const auto fact = [](const char *key, bool isTold, const QString &text) -> Fact {
        return { key, valueIf(isTold, text), text };
    };
    const bool isTold = value && isDescribed(what);
    const QString meaning = value ? meaningText(what, *value) : QString();
    return { { "value", valueIf(value.has_value(), what.pair.quantity(value.value_or(0))),
               value ? numberText(what, *value) : QString() },
             fact("name", isTold, what.name),
             fact("scaled", isTold, value ? formatValue(what, *value) : QString()),
             fact("unit", isTold, what.scaling.unit),
             fact("meaning", isTold && !meaning.isEmpty(), meaning) };
}

void printValues(const Target &target, const QVector<quint16> &values, bool json,
                 const RegisterNames &names, const Pair &pair, const QString &outcome, int write)
{
    for (int i = 0; i + pair.length() <= host::lengthOf(values); i += pair.length()) {
        WatchedValue what = names.of(target.station, target.regType, target.address + i);
        what.pair = pair;
        const quint32 value =
            pair.length() == 1 ? values.at(i) : pair.joined(values.at(i), values.at(i + 1));
        if (!json) {
            printLine(valueLine(what, value, outcome));
            continue;
        }
        Facts facts =
            registerFacts(what.station, what.regType, what.address) + valueFacts(what, value);
        if (!outcome.isEmpty())
            facts += { { "outcome", outcome }, { "write", write } };
        printJson(facts);
    }
}

} // namespace dx4::cli
