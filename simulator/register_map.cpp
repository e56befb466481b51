// SPDX-License-Identifier: MIT
// Which Modbus registers the inverter has, and what may be done with them.
#include "simulator/register_map.h"

#include "common/number_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace dx4::sim {

namespace {

std::string upperCase(std::string text)
{
    for (char &character : text)
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    return text;
}

/// Digits alone.
std::optional<std::uint16_t> indexOf(const std::string &text)
{
    const bool isDecimal = text.find_first_not_of("0123456789") == std::string::npos;
    return isDecimal ? common::parseRegisterValue(text) : std::nullopt;
}

std::optional<std::uint16_t> existing(std::optional<std::uint16_t> address)
{
    return address && bandOf(*address) ? address : std::nullopt;
}

/// The register that digits count from the first of a band on.
std::optional<std::uint16_t> registerBehind(std::uint16_t first, const std::string &digits)
{
    const Band *band = bandOf(first);
    const std::optional<std::uint16_t> index = indexOf(digits);
    if (!band || !index || *index >= band->count)
        return std::nullopt;
    return static_cast<std::uint16_t>(first + *index);
}

/// "4.12" or "c.3", behind the "F".
std::optional<std::uint16_t> parameterByName(const std::string &text)
{
    const std::size_t point = text.find('.');
    if (point != 1)
        return std::nullopt;
    const std::optional<std::uint16_t> group = common::parseRegisterValue("0x" + text.substr(0, 1));
    return group ? registerBehind(parameterRegister(*group, 0), text.substr(2)) : std::nullopt;
}

} // namespace

const std::vector<Band> &bands()
{
    static const std::vector<Band> table = [] {
        std::vector<Band> made = {
            // first, count, readable, writable
            { controlWordRegister, 2, false, true }, // CW, FRE
            { statusWordRegister, 2, true, false }, // SW, FU
            { firstMonitorRegister, monitorCount, true, false }, // D
        };
        for (const ParameterGroupRow &group : parameterGroupRows)
            made.push_back({ static_cast<std::uint16_t>(group.code * indexesPerGroup),
                             static_cast<std::uint16_t>(group.highest + 1), true, true });
        return made;
    }();
    return table;
}

const Band *bandOf(std::uint16_t address)
{
    const auto found = std::find_if(bands().begin(), bands().end(),
                                    [address](const Band &band) { return band.holds(address); });
    return found == bands().end() ? nullptr : &*found;
}

std::optional<std::uint16_t> registerByName(const std::string &name)
{
    const std::string text = upperCase(name);
    for (const RegisterTypeRow &row : registerTypeRows) {
        if (row.isSingle() && text == row.name)
            return static_cast<std::uint16_t>(row.base);
    }
    if (text.compare(0, 2, "0X") == 0)
        return existing(common::parseRegisterValue("0x" + text.substr(2)));
    if (text[0] == 'F')
        return parameterByName(text.substr(1));
    if (text[0] == 'D')
        return registerBehind(firstMonitorRegister, text.substr(1));
    return existing(common::parseRegisterValue(text));
}

std::string registerName(std::uint16_t address)
{
    for (const RegisterTypeRow &row : registerTypeRows) {
        if (row.isSingle() && address == row.base)
            return row.name;
    }
    char text[16];
    if (!bandOf(address))
        std::snprintf(text, sizeof text, "0x%04X", unsigned { address });
    else if (address < 0xF000)
        std::snprintf(text, sizeof text, "D%u", unsigned { address } - firstMonitorRegister);
    else
        std::snprintf(text, sizeof text, "F%x.%u", (address >> 8) & 0xFU, address & 0xFFU);
    return text;
}

} // namespace dx4::sim
