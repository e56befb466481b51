// SPDX-License-Identifier: MIT
// Which Modbus registers the inverter has, and what may be done with them.
#pragma once

#include "register_types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dx4::sim {

inline constexpr std::uint16_t baseOf(RegisterType type)
{
    return static_cast<std::uint16_t>(registerTypeRows[type].base);
}

inline constexpr std::uint16_t controlWordRegister = baseOf(TypeCw); // write only
inline constexpr std::uint16_t frequencyRegister = baseOf(TypeFre); // write only, 0.01 Hz
inline constexpr std::uint16_t statusWordRegister = baseOf(TypeSw); // read only
inline constexpr std::uint16_t faultCodeRegister = baseOf(TypeFu); // read only
inline constexpr std::uint16_t firstMonitorRegister = baseOf(TypeD); // D0
inline constexpr std::uint16_t monitorCount = 38; // D0 to D37

/// A run of registers without a gap, all with the same access.
struct Band {
    std::uint16_t first; ///< lowest Modbus register
    std::uint16_t count; ///< registers
    bool readable;
    bool writable;

    /// Whether `address` lies inside.
    bool holds(std::uint16_t address) const { return address >= first && address - first < count; }
};

/// Every band, ascending.
const std::vector<Band> &bands();

/// The band that holds `address`; null when there is no such register.
const Band *bandOf(std::uint16_t address);

/// Register of parameter `index` of group `group` (0 to 9, and 12 for "c").
constexpr std::uint16_t parameterRegister(unsigned group, unsigned index)
{
    return static_cast<std::uint16_t>(0xF000U + group * 0x100U + index);
}

/// The register that a text names: "F4.12", "Fc.3", "D5", "CW", "FRE", "SW", "FU", or a number such
/// as "0xF00C" or "53248". Letters in either case. None for a text that names no register.
std::optional<std::uint16_t> registerByName(const std::string &name);

/// The name of a register as registerByName() takes it; "0x1234" for one that does not exist.
std::string registerName(std::uint16_t address);

} // namespace dx4::sim
