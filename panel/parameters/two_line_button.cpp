// SPDX-License-Identifier: MIT
// A button with a name and what is known of it.
#include "panel/parameters/two_line_button.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>

namespace dx4::panel {
namespace {

constexpr int margin = 8; // px
constexpr int stateShare = 85; // percent of the name's size

} // namespace

TwoLineButton::TwoLineButton(QWidget *parent)
    : FlatButton(QString(), parent)
{
}

QSize TwoLineButton::minimumSizeHint() const
{
    return { 3 * targetSize, targetSize };
}

void TwoLineButton::setLines(const QString &name, const QString &state, bool isFaded)
{
    if (text() == name && m_state == state && m_isFaded == isFaded)
        return;
    m_state = state;
    m_isFaded = isFaded;
    setText(name);
    setAccessibleName(state.isEmpty() ? name : name + QStringLiteral(", ") + state);
    update();
}

void TwoLineButton::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    drawGround(painter, isDown() ? look.accent : isEnabled() ? look.card : look.window);
    const QColor first = isDown() ? look.accentText : isEnabled() ? look.text : look.faint;
    const QRect inner = rect().adjusted(margin, 3, -margin, -3);
    const int half = m_state.isEmpty() ? inner.height() : inner.height() / 2;
    painter.setFont(sized(font(), font().pixelSize(), true));
    painter.setPen(first);
    // The end of a name tells as much as its begin: "Pump north", "Pump south".
    painter.drawText(QRect(inner.topLeft(), QSize(inner.width(), half)),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(text(), Qt::ElideMiddle, inner.width()));
    painter.setFont(sized(font(), font().pixelSize() * stateShare / 100));
    painter.setPen(m_isFaded && !isDown() ? look.faded : first);
    painter.drawText(QRect(inner.left(), inner.top() + half, inner.width(), inner.height() - half),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(m_state, Qt::ElideRight, inner.width()));
}

} // namespace dx4::panel
