// SPDX-License-Identifier: MIT
// Colours of traces.
#include "panel/trendview/trace_colours.h"

#include <array>

namespace dx4::panel {
namespace {

// Neighbours differ in lightness too, for those who do not tell red from green.
constexpr std::array<QRgb, mostTraces> onLight = { 0x0B57A4, 0xA63A00, 0x1B6E2C, 0x8A1A7C,
                                                   0x0A6B75, 0x6B5A00, 0x4A3CB0, 0x9C1F3A };
constexpr std::array<QRgb, mostTraces> onDark = { 0x7FB8FF, 0xFFB070, 0x7FDB8E, 0xF29BE6,
                                                  0x5FD6E0, 0xE6D35C, 0xB9B0FF, 0xFF9CA8 };

} // namespace

QColor traceColour(const Look &look, int index)
{
    const bool isDark = look.card.lightness() < look.text.lightness();
    const auto place = static_cast<std::size_t>(index % mostTraces);
    return QColor::fromRgb(isDark ? onDark.at(place) : onLight.at(place));
}

} // namespace dx4::panel
