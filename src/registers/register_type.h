// SPDX-License-Identifier: MIT
// Register types by their names, and comparison of names.
#pragma once

#include "register_tables.h"

#include <QString>

#include <algorithm>

namespace dx4 {

/// The type with this name, case-sensitive.
RegisterType registerType(const QString &name);

/// Whether two texts are equal; without a call into Qt, and at once when they share characters.
inline bool sameText(const QString &a, const QString &b)
{
    return a.size() == b.size()
        && (a.constData() == b.constData() || std::equal(a.cbegin(), a.cend(), b.cbegin()));
}

/// The row of a type; null for UnknownType.
inline const RegisterTypeRow *rowOf(RegisterType type)
{
    return type == UnknownType ? nullptr : &registerTypeRows[type];
}

/// The driver's own string for one of the six names, else the string given.
///
/// Records that share it are compared by one pointer and copied without counting references.
inline const QString &sharedName(const QString &name)
{
    const RegisterType type = registerType(name);
    return type == UnknownType ? name : REG_LIST[type];
}

} // namespace dx4
