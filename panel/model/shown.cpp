// SPDX-License-Identifier: MIT
// What a screen may say of a register: no value looks newer than it is.
#include "panel/model/shown.h"

#include <QStringList>

namespace dx4::panel {
namespace {

constexpr int bitsOfWord = 16;

/// Trust, age and marks; the number is the caller's.
Shown frameOf(const host::RegisterValue *value, host::Duration since)
{
    Shown shown;
    if (!value)
        return shown;
    shown.failed = value->state.failed;
    shown.pending = value->state.writePending;
    const host::Duration age = ageOf(*value, since);
    if (!value->state.known || age >= goneFrom)
        return shown;
    const bool isOld = age >= oldFrom || value->state.stale;
    shown.trust = isOld ? Shown::Trust::Old : Shown::Trust::Fresh;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age).count();
    if (isOld)
        shown.age = Shown::tr("%1 s old").arg(seconds);
    return shown;
}

QString wordsOf(const QMap<int, QString> &states, quint16 word)
{
    QStringList words;
    for (int bit = 0; bit < bitsOfWord; ++bit) {
        if ((word >> bit) & 1)
            words.append(states.value(bit, Shown::tr("bit %1").arg(bit)));
    }
    return words.isEmpty() ? QStringLiteral("0") : words.join(QStringLiteral(", "));
}

} // namespace

QString Shown::text() const
{
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

QString Shown::marks() const
{
    QStringList parts;
    if (!age.isEmpty())
        parts.append(age);
    if (failed)
        parts.append(tr("read failed"));
    if (pending)
        parts.append(tr("not confirmed"));
    return parts.join(QStringLiteral(", "));
}

QString Shown::fullText() const
{
    const QString beside = marks();
    return beside.isEmpty() ? text() : QStringLiteral("%1, %2").arg(text(), beside);
}

host::Duration ageOf(const host::RegisterValue &value, host::Duration since)
{
    return value.state.age + since;
}

Shown showQuantity(const host::RegisterValue *value, host::Duration since, const QLocale &locale)
{
    Shown shown = frameOf(value, since);
    if (shown.trust == Shown::Trust::Gone)
        return shown;
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    const host::Scaling &scaling = value->scaling;
    shown.quantity = scaling.quantity(value->state.value);
    shown.number = plain.toString(shown.quantity, 'f', scaling.decimals);
    shown.unit = scaling.unit;
    return shown;
}

Shown showStates(const host::RegisterValue *value, host::Duration since,
                 const QMap<int, QString> &states)
{
    Shown shown = frameOf(value, since);
    if (shown.trust != Shown::Trust::Gone)
        shown.number = wordsOf(states, value->state.value);
    return shown;
}

Shown showFault(const host::RegisterValue *value, host::Duration since,
                const QMap<int, QString> &faults)
{
    Shown shown = frameOf(value, since);
    if (shown.trust != Shown::Trust::Gone) {
        const int code = value->state.value;
        shown.number = faults.value(code, QString::number(code));
    }
    return shown;
}

} // namespace dx4::panel
