// SPDX-License-Identifier: MIT
// The oldest alarm that nobody has acknowledged, on top of every page.
#include "panel/alarms/alarm_banner.h"

#include "panel/alarms/alarm_watch.h"
#include "panel/alarms/row_button.h"
#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QPainter>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
namespace {

constexpr int headingSize = 18; // px, as those below at a scale of 1
constexpr int detailSize = 14;
constexpr int markSize = 30;
constexpr int margin = 10;

} // namespace

BannerButton::BannerButton(QWidget *parent)
    : FlatButton(QString(), parent)
{
    setObjectName(QStringLiteral("banner"));
}

void BannerButton::setScale(double scale)
{
    m_scale = scale;
    setFixedHeight(static_cast<int>(targetSize * scale));
    update();
}

void BannerButton::show(RowMark mark, const QString &heading, const QString &time, int others)
{
    const QString more = others > 0 ? tr("%1 more").arg(others) : QString();
    const QString over = tr("%1 (over)").arg(heading);
    const QString text = mark == RowMark::Over ? over : heading;
    if (mark == m_mark && text == this->text() && time == m_time && more == m_more)
        return;
    m_mark = mark;
    m_time = time;
    m_more = more;
    setText(text);
    setAccessibleName(tr("Alarm, not acknowledged: %1, %2. %3").arg(text, time, more));
    update();
}

/// An alarm that is over stands on a quieter ground.
void BannerButton::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    const bool isActive = m_mark == RowMark::Alert;
    const QColor ground = isActive ? look.faultGround : look.card;
    const QColor colour = isActive ? look.faultText : look.text;
    const auto at = [this](int size) { return static_cast<int>(size * m_scale); };
    QPainter painter(this);
    drawGround(painter, ground);
    QRect inner = rect().adjusted(at(margin), 0, -at(margin), 0);
    const int size = at(markSize);
    drawMark(painter, m_mark, QRectF(inner.left(), (height() - size) / 2.0, size, size), colour,
             ground);
    inner.setLeft(inner.left() + size + at(margin));
    painter.setPen(colour);
    painter.setFont(sized(font(), at(detailSize)));
    const QString side = m_more.isEmpty() ? m_time : m_time + QLatin1Char('\n') + m_more;
    const QRect needed = painter.boundingRect(inner, Qt::AlignRight | Qt::AlignVCenter, side);
    painter.drawText(inner, Qt::AlignRight | Qt::AlignVCenter, side);
    inner.setRight(needed.left() - at(margin));
    painter.setFont(sized(font(), at(headingSize), true));
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, inner.width()));
}

AlarmBanner::AlarmBanner(AlarmWatch &watch, AlarmWords words, std::function<journal::Time()> now,
                         QWidget *parent)
    : Page(parent)
    , m_watch(watch)
    , m_words(std::move(words))
    , m_now(std::move(now))
    , m_button(new BannerButton)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(targetGap, targetGap, targetGap, 0);
    column->addWidget(m_button);
    connect(m_button, &FlatButton::clicked, this, &AlarmBanner::tapped);
    setScale(1.0);
    refresh();
}

void AlarmBanner::refresh()
{
    m_watch.look();
    const Alarm *oldest = m_watch.book().oldest();
    if (oldest) {
        const bool isOver = oldest->state == AlarmState::Returned;
        m_button->show(isOver ? RowMark::Over : RowMark::Alert, m_words.heading(*oldest),
                       timeText(oldest->since, m_now()), m_watch.book().unacknowledged() - 1);
    }
    setVisible(oldest != nullptr);
}

void AlarmBanner::setScale(double scale)
{
    m_button->setScale(scale);
}

} // namespace dx4::panel
