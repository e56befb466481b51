// SPDX-License-Identifier: MIT
// What parameters are called.
#include "panel/parameters/parameter_names.h"

#include "host/link/address_range.h"
#include "host/link/notation.h"
#include "host/parameters/parameter_set.h"
#include "register_tables.h"

#include <QLocale>

namespace dx4::panel {

ParameterNames::ParameterNames(const host::Config &config)
{
    std::map<QString, int> addresses;
    for (int address : host::allParameters())
        addresses[parameterNumber(address)] = address;
    for (const host::StationConfig &station : config.stations) {
        for (const host::RegisterConfig &at : station.registers) {
            const auto range = host::parseRange(at.at, nullptr);
            const bool isParameter = range && range->regType == REG_LIST[TypeF];
            const auto first =
                isParameter ? addresses.find(range->firstText.toLower()) : addresses.end();
            if (first == addresses.end())
                continue;
            for (int i = 0; i < range->count; ++i) {
                const Label label { at.name, at.scaling };
                m_labels[{ station.address, first->second + i }] = label;
                m_ofAny.emplace(first->second + i, label);
            }
        }
    }
}

const ParameterNames::Label *ParameterNames::find(int station, int address) const
{
    const auto own = m_labels.find({ station, address });
    if (own != m_labels.end())
        return &own->second;
    const auto any = m_ofAny.find(address);
    return any == m_ofAny.end() ? nullptr : &any->second;
}

QString quantityText(const ParameterNames::Label *label, quint16 value)
{
    const bool isPlain = !label
        || (label->scaling.unit.isEmpty() && label->scaling.decimals == 0
            && !label->scaling.isSigned);
    if (isPlain)
        return QString::number(value);
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    const host::Scaling &scaling = label->scaling;
    const QString quantity = locale.toString(scaling.quantity(value), 'f', scaling.decimals);
    return scaling.unit.isEmpty() ? quantity : quantity + QLatin1Char(' ') + scaling.unit;
}

int groupOf(int address)
{
    return address / indexesPerGroup;
}

QString groupText(int group)
{
    return group == groupC ? QStringLiteral("c") : QString::number(group);
}

QString parameterNumber(int address)
{
    return host::addressText(REG_LIST[TypeF], address);
}

} // namespace dx4::panel
