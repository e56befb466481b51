// SPDX-License-Identifier: MIT
// The six register types as numbers.
#include "registers/register_type.h"

namespace dx4 {
namespace {

RegisterType twoLetterType(char16_t first, char16_t second)
{
    if (second == u'W')
        return first == u'C' ? TypeCw : first == u'S' ? TypeSw : UnknownType;
    return first == u'F' && second == u'U' ? TypeFu : UnknownType;
}

} // namespace

// By length and letters: six comparisons of strings would cost as much as decoding 15 registers.
RegisterType registerType(const QString &name)
{
    const auto letter = [&name](int i) { return static_cast<char16_t>(name.at(i).unicode()); };
    switch (name.size()) {
    case 1:
        return letter(0) == u'F' ? TypeF : letter(0) == u'D' ? TypeD : UnknownType;
    case 2:
        return twoLetterType(letter(0), letter(1));
    case 3:
        return letter(0) == u'F' && letter(1) == u'R' && letter(2) == u'E' ? TypeFre : UnknownType;
    default:
        return UnknownType;
    }
}

} // namespace dx4
