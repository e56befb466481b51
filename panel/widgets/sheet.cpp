// SPDX-License-Identifier: MIT
// What asks something, inside the window.
#include "panel/widgets/sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace dx4::panel {
namespace {

constexpr int titleSize = 22; // px
constexpr int margin = 16; // px

} // namespace

Sheet::Sheet(const QString &title, QWidget *page)
    : QWidget(page)
    , m_content(new QVBoxLayout(this))
{
    m_content->setContentsMargins(margin, margin, margin, margin);
    m_content->setSpacing(targetGap);
    auto *heading = new QLabel(title);
    heading->setFont(sized(font(), titleSize, true));
    m_content->addWidget(heading);
    setAccessibleName(title);
    page->installEventFilter(this);
    hide();
}

void Sheet::setBelowEnabled(bool isEnabled)
{
    const auto siblings =
        parentWidget()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *sibling : siblings) {
        if (!qobject_cast<Sheet *>(sibling))
            sibling->setEnabled(isEnabled);
    }
}

void Sheet::open()
{
    setBelowEnabled(false);
    setGeometry(parentWidget()->rect());
    raise();
    show();
}

void Sheet::close()
{
    hide();
    setBelowEnabled(true);
    Q_EMIT closed();
}

bool Sheet::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void Sheet::paintEvent(QPaintEvent *)
{
    const Look look = lookOf(palette());
    QPainter painter(this);
    painter.fillRect(rect(), look.card);
    painter.setPen(QPen(look.accent, 3));
    painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

} // namespace dx4::panel
