// SPDX-License-Identifier: MIT
// Texts with places that are filled in.
#pragma once

#include <QString>

#include <type_traits>

namespace dx4::cli {

/// What fills a place.
template <typename Part> QString partText(const Part &part)
{
    if constexpr (std::is_integral_v<Part>)
        return QString::number(part);
    else if constexpr (std::is_convertible_v<Part, const char *>)
        return QString::fromLatin1(part);
    else
        return part;
}

/// The layout with its places %1, %2 ... filled, each with one part. All at once: a part that has a
/// "%1" of its own, such as a file's name, stays as it is.
template <typename... Parts> QString filled(const char *layout, const Parts &...parts)
{
    return QString::fromLatin1(layout).arg(partText(parts)...);
}

} // namespace dx4::cli
