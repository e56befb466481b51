// SPDX-License-Identifier: MIT
// Lines of text, as many at once as there is room for.
#include "panel/parameters/line_pager.h"

#include "panel/widgets/look.h"

#include <QEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int turnWidth = 2 * targetSize; // px

QStringList wrapped(const QString &line, const QFont &font, int width)
{
    QTextLayout layout(line, font);
    QStringList parts;
    layout.beginLayout();
    for (QTextLine part = layout.createLine(); part.isValid(); part = layout.createLine()) {
        part.setLineWidth(width);
        parts.append(line.mid(part.textStart(), part.textLength()).trimmed());
    }
    layout.endLayout();
    return parts;
}

} // namespace

LinePager::LinePager(QWidget *parent)
    : QWidget(parent)
    , m_up(new FlatButton(tr("Up"), this))
    , m_down(new FlatButton(tr("Down"), this))
{
    setFocusPolicy(Qt::NoFocus);
    connect(m_up, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(m_down, &FlatButton::clicked, this, [this] { turn(1); });
}

void LinePager::setLines(const QStringList &lines)
{
    if (lines == m_lines)
        return;
    m_lines = lines;
    m_first = 0;
    setAccessibleName(lines.join(QLatin1Char('\n')));
    arrange();
}

QSize LinePager::minimumSizeHint() const
{
    return { 4 * targetSize, 2 * targetSize + targetGap };
}

int LinePager::textWidth() const
{
    return std::max(targetSize, width() - turnWidth - targetGap);
}

int LinePager::perPage() const
{
    return std::max(1, height() / fontMetrics().lineSpacing());
}

void LinePager::turn(int pages)
{
    const int next = m_first + pages * perPage();
    if (next < 0 || next >= m_wrapped.size())
        return;
    m_first = next;
    arrange();
}

void LinePager::arrange()
{
    m_wrapped.clear();
    for (const QString &line : std::as_const(m_lines))
        m_wrapped += wrapped(line, font(), textWidth());
    m_first = std::min<int>(m_first, static_cast<int>(m_wrapped.size()));
    const bool isNeeded = perPage() < m_wrapped.size();
    m_up->setGeometry(width() - turnWidth, 0, turnWidth, targetSize);
    m_down->setGeometry(width() - turnWidth, height() - targetSize, turnWidth, targetSize);
    m_up->setVisible(isNeeded);
    m_down->setVisible(isNeeded);
    m_up->setEnabled(m_first > 0);
    m_down->setEnabled(m_first + perPage() < m_wrapped.size());
    update();
}

void LinePager::resizeEvent(QResizeEvent *)
{
    arrange();
}

void LinePager::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        arrange();
    QWidget::changeEvent(event);
}

void LinePager::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(lookOf(palette()).text);
    const int step = fontMetrics().lineSpacing();
    const QStringList page = m_wrapped.mid(m_first, perPage());
    for (int i = 0; i < page.size(); ++i)
        painter.drawText(QRect(0, i * step, textWidth(), step), Qt::AlignLeft | Qt::AlignVCenter,
                         page.at(i));
}

} // namespace dx4::panel
