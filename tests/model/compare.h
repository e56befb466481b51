// SPDX-License-Identifier: MIT
// Compares two drivers member by member and says in words what differs.
#pragma once

#include "driver_model.h"
#include "korvane_dx4.h"

#include <string>

namespace model {

/// Every field alike; of a frame only the bytes that are sent, and not its spare word.
bool same(const VARIABLE &a, const VARIABLE &b);
bool same(const _RCP_VAR_PRO &a, const _RCP_VAR_PRO &b);
bool same(const FRAME_PRO &a, const FRAME_PRO &b);
bool same(const _DATA_ &a, const _DATA_ &b);
bool same(const KEY_ADDRESS &a, const KEY_ADDRESS &b);
inline bool same(int a, int b)
{
    return a == b;
}
inline bool same(const QString &a, const QString &b)
{
    return a == b;
}

/// One line with every field; long byte arrays up to their last byte that is not 0.
std::string describe(const VARIABLE &var);
std::string describe(const _RCP_VAR_PRO &recipe);
std::string describe(const FRAME_PRO &frame);
std::string describe(const _DATA_ &area);
std::string describe(const KEY_ADDRESS &key);
std::string describe(int number);
std::string describe(const QString &text);

/// Equal length and every element alike.
template <typename List> bool sameList(const List &a, const List &b)
{
    if (a.size() != b.size())
        return false;
    for (int i = 0; i < a.size(); ++i) {
        if (!same(a.at(i), b.at(i)))
            return false;
    }
    return true;
}

/// All members that both sides hold by value, and whether a callback is set.
///
/// Pointers into a host's memory are left out: the two drivers have a host each.
/// @return one line per member that differs; empty when none does
std::string differences(const korvane_dx4 &real, const DriverModel &expected);

} // namespace model
