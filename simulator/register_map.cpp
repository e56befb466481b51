// SPDX-License-Identifier: MIT
// Which Modbus registers the inverter has, and what may be done with them.
#include "simulator/register_map.h"

#include "common/number_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace dx4::sim {

namespace {

struct NamedRegister {
    const char *name;
    std::uint16_t address;
};

constexpr std::array<NamedRegister, 4> namedRegisters = { {
    { "CW", controlWordRegister },
    { "FRE", frequencyRegister },
    { "SW", statusWordRegister },
    { "FU", faultCodeRegister },
} };

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

/// "4.12" or "c.3", behind the "F".
std::optional<std::uint16_t> parameterByName(const std::string &text)
{
    const std::size_t point = text.find('.');
    if (point != 1)
        return std::nullopt;
    const std::optional<std::uint16_t> group = common::parseRegisterValue("0x" + text.substr(0, 1));
    const std::optional<std::uint16_t> index = indexOf(text.substr(2));
    if (!group || !index || *index > 0xFFU)
        return std::nullopt;
    return existing(parameterRegister(*group, *index));
}

} // namespace

const std::vector<Band> &bands()
{
    static const std::vector<Band> table = {
        // first, count, readable, writable
        { controlWordRegister, 2, false, true }, // CW, FRE
        { statusWordRegister, 2, true, false }, // SW, FU
        { firstMonitorRegister, monitorCount, true, false }, // D
        { 0xF000, 19, true, true }, // F group 0
        { 0xF100, 19, true, true },
        { 0xF200, 19, true, true },
        { 0xF300, 17, true, true },
        { 0xF400, 29, true, true },
        { 0xF500, 27, true, true },
        { 0xF600, 20, true, true },
        { 0xF700, 9, true, true },
        { 0xF800, 18, true, true },
        { 0xF900, 12, true, true },
        { 0xFC00, 14, true, true }, // F group c
    };
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
    for (const NamedRegister &named : namedRegisters) {
        if (text == named.name)
            return named.address;
    }
    if (text.rfind("0X", 0) == 0)
        return existing(common::parseRegisterValue("0x" + text.substr(2)));
    if (text.find('.') != std::string::npos && text.front() == 'F')
        return parameterByName(text.substr(1));
    if (!text.empty() && text.front() == 'D') {
        const std::optional<std::uint16_t> index = indexOf(text.substr(1));
        if (!index || *index >= monitorCount)
            return std::nullopt;
        return existing(static_cast<std::uint16_t>(firstMonitorRegister + *index));
    }
    return existing(common::parseRegisterValue(text));
}

std::string registerName(std::uint16_t address)
{
    for (const NamedRegister &named : namedRegisters) {
        if (address == named.address)
            return named.name;
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
