// SPDX-License-Identifier: MIT
// Colours of the panel, light and dark.
#pragma once

#include <QColor>
#include <QPalette>

namespace dx4::panel {

/// Sizes for fingers in gloves.
inline constexpr int targetSize = 48; // px, least width and height of what can be touched
inline constexpr int targetGap = 8; // px between two of them

/// Each text colour has a contrast of at least 4.5:1 to each ground that it stands on.
struct Look {
    QColor window; ///< ground of the window
    QColor card; ///< ground of cards and sheets
    QColor edge; ///< frame of cards
    QColor text;
    QColor faded; ///< text of old values and captions
    QColor button;
    QColor buttonText;
    QColor faint; ///< text of what cannot be used now
    QColor accent; ///< ground of what is chosen, progress
    QColor accentText;
    QColor warning; ///< text of what went wrong
    QColor faultGround;
    QColor faultText;
    QColor stop;
    QColor stopText;
};

Look lightLook();
Look darkLook();

/// The look that goes with a palette, by the ground of its windows.
Look lookOf(const QPalette &palette);
QPalette paletteOf(const Look &look);

/// Contrast of two opaque colours as the accessibility guidelines of the web count it, 1 to 21.
double contrast(const QColor &a, const QColor &b);

} // namespace dx4::panel
