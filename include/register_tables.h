// SPDX-License-Identifier: MIT
// The register types as tables that every module includes: names, descriptions, ranges, Modbus
// registers.
//
// All are made from the rows of register_types.h; tables indexed by type follow the order of
// REG_LIST.
#pragma once

#include "register_types.h"

#include <QString>

#include <cstddef>

namespace dx4 {

/// Columns of REG_DESCRIPTION.
enum DescriptionColumn {
    FormatColumn = 0, ///< as RegisterTypeRow::format
    LowestColumn = 1, ///< as RegisterTypeRow::lowest
    HighestColumn = 2, ///< as RegisterTypeRow::highest
    FourthColumn = 3, ///< "1" in every row
    AccessColumn = 4, ///< "0" read only, "1" read and write, "2" write only
    DescriptionColumnCount = 5,
};

/// Both offset tables in one object, because group codes are reached as the continuation of the
/// type bases: the code of group g is the word at position 6 + g counted from the first base.
struct RegisterOffsets {
    int typeBase[registerTypeCount] = {};
    int groupCode[parameterGroupCount] = {};

    constexpr RegisterOffsets()
    {
        for (int type = 0; type < registerTypeCount; ++type)
            typeBase[type] = registerTypeRows[type].base;
        for (int group = 0; group < parameterGroupCount; ++group)
            groupCode[group] = parameterGroupRows[group].code;
    }
};
static_assert(offsetof(RegisterOffsets, groupCode) == registerTypeCount * sizeof(int),
              "the group codes follow the type bases without a gap");

inline constexpr RegisterOffsets registerOffsets;

struct ParameterRanges {
    int rows[parameterGroupCount][2] = {};

    constexpr ParameterRanges()
    {
        for (int group = 0; group < parameterGroupCount; ++group)
            rows[group][1] = parameterGroupRows[group].highest;
    }
};

inline constexpr ParameterRanges parameterRanges;

/// The texts, built from Latin-1 text on the heap, not string literals of this file: a host may
/// keep a text that it was given after it has unloaded the driver, when the driver's own constants
/// are gone.
struct RegisterTexts {
    QString names[registerTypeCount];
    QString descriptions[registerTypeCount][DescriptionColumnCount];

    RegisterTexts()
    {
        for (int type = 0; type < registerTypeCount; ++type) {
            const RegisterTypeRow &row = registerTypeRows[type];
            const char *const access = !row.isReadable ? "2" : row.isWritable ? "1" : "0";
            const char *const texts[] = { row.format, row.lowest, row.highest, "1", access };
            names[type] = QLatin1String(row.name);
            for (int column = 0; column < DescriptionColumnCount; ++column)
                descriptions[type][column] = QLatin1String(texts[column]);
        }
    }
};

inline const RegisterTexts registerTexts;

} // namespace dx4

/// The names, compared case-sensitively.
inline const QString (&REG_LIST)[dx4::registerTypeCount] = dx4::registerTexts.names;

/// What a host shows for each type.
inline const QString (&REG_DESCRIPTION)[dx4::registerTypeCount][dx4::DescriptionColumnCount] =
    dx4::registerTexts.descriptions;

/// Modbus base register of each type.
inline constexpr const int (&REG_OFFSETADDR)[dx4::registerTypeCount] =
    dx4::registerOffsets.typeBase;

/// High byte of the Modbus address of each "F" group.
inline constexpr const int (&REG_F_OFFSETADDR)[dx4::parameterGroupCount] =
    dx4::registerOffsets.groupCode;

/// Lowest and highest index of each "F" group, by group number.
inline constexpr const int (&REG_F_ADDRESS)[dx4::parameterGroupCount][2] =
    dx4::parameterRanges.rows;
