// SPDX-License-Identifier: MIT
// What the window asks of each page.
#pragma once

#include <QWidget>

namespace dx4::panel {

/// One page of the window. It fits what is left of 800 x 480 above the strip of message, page
/// buttons and stop.
class Page : public QWidget {
public:
    using QWidget::QWidget;

    /// Draws what is known now. Called some times a second while the page is shown, and when it is
    /// opened.
    virtual void refresh() = 0;

    /// Has the page grow with the window, so that it is read from further away.
    ///
    /// @param scale  1 to 2
    virtual void setScale(double scale) = 0;
};

} // namespace dx4::panel
