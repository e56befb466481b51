// SPDX-License-Identifier: MIT
// What asks something, inside the window.
#include "panel/widgets/sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int plainSize = 16; // px, of texts on the smallest screen
constexpr int titleSize = 22; // px, likewise
constexpr int margin = 16; // px

} // namespace

Sheet::Sheet(const QString &title, QWidget *page)
    : QWidget(page)
    , m_content(new QVBoxLayout(this))
    , m_title(new QLabel)
{
    m_content->setContentsMargins(margin, margin, margin, margin);
    m_content->setSpacing(targetGap);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setWordWrap(true);
    m_title->setFont(sized(font(), static_cast<int>(titleSize * textScale()), true));
    m_content->addWidget(m_title);
    setTitle(title);
    page->installEventFilter(this);
    hide();
}

void Sheet::setTitle(const QString &title)
{
    m_title->setText(title);
    setAccessibleName(title);
}

double Sheet::textScale() const
{
    return static_cast<double>(QFontInfo(font()).pixelSize()) / plainSize;
}

void Sheet::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        m_title->setFont(sized(font(), static_cast<int>(titleSize * textScale()), true));
    QWidget::changeEvent(event);
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

bool Sheet::isAnotherOpen() const
{
    const auto sheets =
        parentWidget()->findChildren<Sheet *>(QString(), Qt::FindDirectChildrenOnly);
    return std::any_of(sheets.begin(), sheets.end(),
                       [this](const Sheet *sheet) { return sheet != this && sheet->isOpen(); });
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
    // One that was opened on top of another leaves that one in charge.
    setBelowEnabled(!isAnotherOpen());
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
