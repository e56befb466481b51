// SPDX-License-Identifier: MIT
// A drive among others: its name, its frequency, its state.
#pragma once

#include "panel/model/panel_line.h"
#include "panel/widgets/flat_button.h"

namespace dx4::panel {

/// Chooses its drive. Painted as a whole and only when what it says has changed.
class DriveCard : public FlatButton {
    Q_OBJECT

public:
    static constexpr QSize plainSize { 232, 88 }; // px, at a scale of 1

    explicit DriveCard(QWidget *parent = nullptr);

    void show(const DriveShown &drive);
    using FlatButton::show;

    /// @param scale  of its texts, 1 or more
    void setScale(double scale);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString lastLine() const;
    void drawName(QPainter &painter, const Look &look, const QRect &place) const;
    void drawFrequency(QPainter &painter, const Look &look, const QRect &place) const;
    void drawState(QPainter &painter, const Look &look, const QRect &place) const;

    DriveShown m_drive;
    double m_scale = 1.0;
};

} // namespace dx4::panel
