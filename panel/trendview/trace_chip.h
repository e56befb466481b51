// SPDX-License-Identifier: MIT
// A trace above the plot: its name and its value.
#pragma once

#include "panel/model/shown.h"
#include "panel/trendview/trace_scene.h"
#include "panel/widgets/flat_button.h"

namespace dx4::panel {

/// Selects its trace, whose scale stands next to the plot.
class TraceChip : public FlatButton {
    Q_OBJECT

public:
    static constexpr int leastWidth = 150; // px, at a scale of 1

    /// What it says.
    struct Content {
        QString name;
        QStringList lines; ///< the present value, or what it was at the cursors
        bool isOld = false; ///< the present value is not known
    };

    /// @param index  of the trace, for its colour
    explicit TraceChip(int index, QWidget *parent = nullptr);

    void show(const Content &content);
    using FlatButton::show;

    void setScale(double scale);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const int m_index;
    Content m_content;
    double m_scale = 1.0;
};

} // namespace dx4::panel
