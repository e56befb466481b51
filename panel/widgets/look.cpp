// SPDX-License-Identifier: MIT
// Colours of the panel, light and dark.
#include "panel/widgets/look.h"

#include <algorithm>
#include <cmath>

namespace dx4::panel {
namespace {

constexpr int middleLightness = 128;

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(static_cast<double>(colour.redF()))
        + 0.7152 * linear(static_cast<double>(colour.greenF()))
        + 0.0722 * linear(static_cast<double>(colour.blueF()));
}

} // namespace

Look lightLook()
{
    Look look;
    look.window = QColor(0xE9, 0xEB, 0xEE);
    look.card = QColor(0xFF, 0xFF, 0xFF);
    look.edge = QColor(0xB4, 0xBA, 0xC2);
    look.text = QColor(0x15, 0x18, 0x1C);
    look.faded = QColor(0x5A, 0x61, 0x6B);
    look.button = QColor(0xD5, 0xDA, 0xE0);
    look.buttonText = look.text;
    look.faint = QColor(0x56, 0x5C, 0x64);
    look.accent = QColor(0x0B, 0x57, 0xA4);
    look.accentText = QColor(0xFF, 0xFF, 0xFF);
    look.warning = QColor(0xA8, 0x00, 0x1C);
    look.faultGround = QColor(0xA8, 0x00, 0x1C);
    look.faultText = QColor(0xFF, 0xFF, 0xFF);
    look.stop = QColor(0xC4, 0x00, 0x1A);
    look.stopText = QColor(0xFF, 0xFF, 0xFF);
    return look;
}

Look darkLook()
{
    Look look;
    look.window = QColor(0x12, 0x15, 0x18);
    look.card = QColor(0x1E, 0x23, 0x29);
    look.edge = QColor(0x4A, 0x53, 0x5E);
    look.text = QColor(0xF2, 0xF4, 0xF6);
    look.faded = QColor(0xA2, 0xAB, 0xB6);
    look.button = QColor(0x36, 0x3E, 0x48);
    look.buttonText = look.text;
    look.faint = QColor(0xB0, 0xB8, 0xC2);
    look.accent = QColor(0x7F, 0xB8, 0xFF);
    look.accentText = QColor(0x08, 0x12, 0x1E);
    look.warning = QColor(0xFF, 0x8A, 0x80);
    look.faultGround = QColor(0xB8, 0x1F, 0x2B);
    look.faultText = QColor(0xFF, 0xFF, 0xFF);
    look.stop = QColor(0xD0, 0x10, 0x28);
    look.stopText = QColor(0xFF, 0xFF, 0xFF);
    return look;
}

Look lookOf(const QPalette &palette)
{
    const bool isDark = palette.color(QPalette::Window).lightness() < middleLightness;
    return isDark ? darkLook() : lightLook();
}

QPalette paletteOf(const Look &look)
{
    QPalette palette;
    palette.setColor(QPalette::Window, look.window);
    palette.setColor(QPalette::WindowText, look.text);
    palette.setColor(QPalette::Base, look.card);
    palette.setColor(QPalette::Text, look.text);
    palette.setColor(QPalette::Button, look.button);
    palette.setColor(QPalette::ButtonText, look.buttonText);
    palette.setColor(QPalette::Highlight, look.accent);
    palette.setColor(QPalette::HighlightedText, look.accentText);
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, look.faint);
    return palette;
}

double contrast(const QColor &a, const QColor &b)
{
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

} // namespace dx4::panel
