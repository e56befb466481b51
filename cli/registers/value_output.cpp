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

QString valueLine(const WatchedValue &what, quint32 value, const QString &outcome)
{
    QString line =
        QStringLiteral("%1  %2 %3  %4")
            .arg(what.station, 3)
            .arg(host::fullAddress(what.regType, what.address).leftJustified(addressWidth))
            .arg(numberText(what, value).rightJustified(valueWidth))
            .arg(hex(value, 4 * what.pair.length()));
    if (isNamedOrScaled(what))
        line += QStringLiteral("  ")
            + QStringLiteral("%1 %2").arg(what.name, quantityText(what, value)).trimmed();
    const QString meaning = meaningText(what, value);
    if (!meaning.isEmpty())
        line += QStringLiteral("  ") + meaning;
    if (!outcome.isEmpty())
        line += QStringLiteral("  ") + outcome;
    return line.trimmed();
}

} // namespace

QJsonObject registerJson(int station, const QString &regType, int address)
{
    return { { QStringLiteral("station"), station },
             { QStringLiteral("type"), regType },
             { QStringLiteral("text"), host::addressText(regType, address) },
             { QStringLiteral("register"), host::modbusRegister(regType, address) } };
}

QString numberText(const WatchedValue &what, quint32 value)
{
    return what.pair.kind == Pair::Kind::None ? QString::number(value) : what.pair.text(value);
}

void describe(QJsonObject &object, const WatchedValue &what, quint32 value)
{
    object.insert(QStringLiteral("value"),
                  what.pair.kind == Pair::Kind::None ? QJsonValue(static_cast<int>(value))
                                                     : QJsonValue(what.pair.quantity(value)));
    if (!isDescribed(what))
        return;
    object.insert(QStringLiteral("name"), what.name);
    object.insert(QStringLiteral("scaled"), formatValue(what, value));
    object.insert(QStringLiteral("unit"), what.scaling.unit);
    const QString meaning = meaningText(what, value);
    if (!meaning.isEmpty())
        object.insert(QStringLiteral("meaning"), meaning);
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
        QJsonObject object = registerJson(what.station, what.regType, what.address);
        describe(object, what, value);
        if (!outcome.isEmpty()) {
            object.insert(QStringLiteral("outcome"), outcome);
            object.insert(QStringLiteral("write"), write);
        }
        printJson(object);
    }
}

} // namespace dx4::cli
