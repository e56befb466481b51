// SPDX-License-Identifier: MIT
// The inverter's register types, a row each; without Qt, for driver, hosts and simulator alike.
//
// The figures are the drive's register map. Checks, catalogue, address texts and encoders of the
// driver are made from these rows.
#pragma once

namespace dx4 {

/// A register type by its row, in the order of REG_LIST.
enum RegisterType { UnknownType = -1, TypeF, TypeD, TypeCw, TypeFre, TypeSw, TypeFu };

/// Register types known to the driver.
inline constexpr int registerTypeCount = 6;

/// What is to be known of a register type.
struct RegisterTypeRow {
    const char *name; ///< compared case-sensitively
    int base; ///< Modbus register of address 0
    int registers; ///< addresses 0 to registers - 1 pass the checks; 0: as the parameter groups say
    bool isReadable;
    bool isWritable;
    const char
        *format; ///< "h.dd" hexadecimal group, point, decimal index; "dd", "d" decimal digits
    const char *lowest; ///< lowest address, as a host shows it
    const char *highest; ///< highest address; clamps the copies of every type but "F"

    /// Whether the type is one register at a fixed place.
    constexpr bool isSingle() const { return registers == 1; }
};

/// Deliberate: the maxima are wider than what the address checks accept. "F" shows "c.28" although
/// group c ends at index 13, and "D" shows "37" although a checked run must end below 32.
// clang-format off
inline constexpr RegisterTypeRow registerTypeRows[registerTypeCount] = {
    // name  base    registers  read   write  format  lowest  highest
    { "F",   0xF000, 0,         true,  true,  "h.dd", "0.0",  "c.28" }, // function parameters
    { "D",   0xD000, 32,        true,  false, "dd",   "0",    "37" },   // monitor values
    { "CW",  0x1001, 1,         false, true,  "d",    "0",    "0" },    // control word
    { "FRE", 0x1002, 1,         false, true,  "d",    "0",    "0" },    // frequency setting
    { "SW",  0x2000, 1,         true,  false, "d",    "0",    "0" },    // status word
    { "FU",  0x2001, 1,         true,  false, "d",    "0",    "0" },    // fault code
};
// clang-format on

/// Parameter groups of type "F": written "0" to "9" and "c", numbered 0 to 10.
inline constexpr int parameterGroupCount = 11;

/// Number of the group that is written "c".
inline constexpr int groupC = 10;

/// Internal addresses of a group: number of the group times this, and the index.
inline constexpr int indexesPerGroup = 256;

struct ParameterGroupRow {
    int code; ///< high byte of the Modbus register
    int highest; ///< highest index; the lowest is 0 in every group
};

inline constexpr ParameterGroupRow parameterGroupRows[parameterGroupCount] = {
    { 0xF0, 18 }, // 0
    { 0xF1, 18 }, // 1
    { 0xF2, 18 }, // 2
    { 0xF3, 16 }, // 3
    { 0xF4, 28 }, // 4
    { 0xF5, 26 }, // 5
    { 0xF6, 19 }, // 6
    { 0xF7, 8 }, //  7
    { 0xF8, 17 }, // 8
    { 0xF9, 11 }, // 9
    { 0xFC, 13 }, // c
};

} // namespace dx4
