// SPDX-License-Identifier: MIT
// The inverter's register types: names, descriptions, ranges and Modbus registers.
//
// Tables indexed by type follow the order of REG_LIST. The figures are the drive's register map.
#pragma once

#include <QString>

#include <cstddef>

namespace dx4 {

/// Register types known to the driver.
inline constexpr int registerTypeCount = 6;

/// Parameter groups of type "F": written "0" to "9" and "c", numbered 0 to 10.
inline constexpr int parameterGroupCount = 11;

/// Columns of REG_DESCRIPTION.
enum DescriptionColumn {
    FormatColumn = 0, ///< "h.dd" hexadecimal group, point, decimal index; "dd", "d" decimal digits
    LowestColumn = 1, ///< lowest address, as text
    HighestColumn = 2, ///< highest address, as text; clamps the copies of every type but "F"
    FourthColumn = 3, ///< "1" in every row
    AccessColumn = 4, ///< "0" read only, "1" read and write, "2" write only
    DescriptionColumnCount = 5,
};

/// Both offset tables in one object, because group codes are reached as the continuation of the
/// type bases: the code of group g is the word at position 6 + g counted from the first base.
struct RegisterOffsets {
    int typeBase[registerTypeCount];
    int groupCode[parameterGroupCount];
};
static_assert(offsetof(RegisterOffsets, groupCode) == registerTypeCount * sizeof(int),
              "the group codes follow the type bases without a gap");

inline constexpr RegisterOffsets registerOffsets = {
    //  F       D       CW      FRE     SW      FU
    { 0xF000, 0xD000, 0x1001, 0x1002, 0x2000, 0x2001 },
    //  0     1     2     3     4     5     6     7     8     9     c
    { 0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFC },
};

} // namespace dx4

/// The names, compared case-sensitively.
///
/// Built from Latin-1 text on the heap, not string literals of this file: a host may keep a name it
/// was given after it has unloaded the driver, when the driver's own constants are gone.
inline const QString REG_LIST[dx4::registerTypeCount] = {
    QLatin1String("F"), // function parameters, group and index
    QLatin1String("D"), // monitor values
    QLatin1String("CW"), // control word, write only
    QLatin1String("FRE"), // frequency setting, write only
    QLatin1String("SW"), // status word, read only
    QLatin1String("FU"), // fault code, read only
};

/// What a host shows for each type.
///
/// Deliberate: the maxima are wider than what the address checks accept. "F" shows "c.28" although
/// group c ends at index 13, and "D" shows "37" although a checked run must end below 32.
// clang-format off
inline const QString REG_DESCRIPTION[dx4::registerTypeCount][dx4::DescriptionColumnCount] = {
    // format                lowest                highest                fourth              access
    { QLatin1String("h.dd"), QLatin1String("0.0"), QLatin1String("c.28"), QLatin1String("1"), QLatin1String("1") }, // F
    { QLatin1String("dd"),   QLatin1String("0"),   QLatin1String("37"),   QLatin1String("1"), QLatin1String("0") }, // D
    { QLatin1String("d"),    QLatin1String("0"),   QLatin1String("0"),    QLatin1String("1"), QLatin1String("2") }, // CW
    { QLatin1String("d"),    QLatin1String("0"),   QLatin1String("0"),    QLatin1String("1"), QLatin1String("2") }, // FRE
    { QLatin1String("d"),    QLatin1String("0"),   QLatin1String("0"),    QLatin1String("1"), QLatin1String("0") }, // SW
    { QLatin1String("d"),    QLatin1String("0"),   QLatin1String("0"),    QLatin1String("1"), QLatin1String("0") }, // FU
};
// clang-format on

/// Modbus base register of each type.
inline constexpr const int (&REG_OFFSETADDR)[dx4::registerTypeCount] =
    dx4::registerOffsets.typeBase;

/// High byte of the Modbus address of each "F" group.
inline constexpr const int (&REG_F_OFFSETADDR)[dx4::parameterGroupCount] =
    dx4::registerOffsets.groupCode;

/// Lowest and highest index of each "F" group, by group number.
inline constexpr int REG_F_ADDRESS[dx4::parameterGroupCount][2] = {
    { 0, 18 }, // 0
    { 0, 18 }, // 1
    { 0, 18 }, // 2
    { 0, 16 }, // 3
    { 0, 28 }, // 4
    { 0, 26 }, // 5
    { 0, 19 }, // 6
    { 0, 8 }, //  7
    { 0, 17 }, // 8
    { 0, 11 }, // 9
    { 0, 13 }, // c
};
