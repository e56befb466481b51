// SPDX-License-Identifier: MIT
// The window: pages one tap apart, and the stop in reach of each.
#include "panel/app/panel_window.h"

#include "panel/app/closing_sheet.h"
#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

constexpr int busyInterval = 100; // ms
constexpr int idleInterval = 500; // ms
constexpr host::Duration idleFrom = std::chrono::minutes(1);
constexpr QSize leastSize(800, 480);
constexpr double highestScale = 2.0;
// Sizes on the smallest screen, px; on larger ones they are multiplied.
constexpr int stopWidth = 176;
constexpr int textSize = 16;
constexpr int stopTextSize = 36;

bool isTouch(const QEvent &event)
{
    return event.type() == QEvent::MouseButtonPress || event.type() == QEvent::TouchBegin
        || event.type() == QEvent::KeyPress;
}

} // namespace

PanelWindow::PanelWindow(PanelLine &line, std::function<host::Duration()> now, QWidget *parent)
    : QWidget(parent)
    , m_line(line)
    , m_now(std::move(now))
    , m_touchedAt(m_now())
    , m_pages(new QStackedWidget)
    , m_strip(new QWidget)
    , m_message(new QLabel)
    , m_bar(new QWidget)
    , m_closing(nullptr)
    , m_stop(new StopButton(this))
{
    setMinimumSize(leastSize);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_pages, 1);
    column->addWidget(m_strip);
    fillStrip();
    addPage(new DrivesPage(line, m_now), tr("Drives"));
    m_closing = new ClosingSheet(line, m_now, m_pages);
    connect(m_closing, &ClosingSheet::agreed, this, [this] {
        m_mayClose = true;
        close();
    });
    connect(m_stop, &StopButton::stopWanted, &m_line, &PanelLine::stopAll);
    // Whoever is startled hits this key: it stops, whatever is open.
    auto *key = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(key, &QShortcut::activated, &m_line, &PanelLine::stopAll);
    connect(&m_timer, &QTimer::timeout, this, &PanelWindow::refresh);
    qApp->installEventFilter(this);
    refresh();
}

void PanelWindow::fillStrip()
{
    auto *column = new QVBoxLayout(m_strip);
    column->setSpacing(targetGap);
    m_message->setObjectName(QStringLiteral("message"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto *bar = new QHBoxLayout(m_bar);
    bar->setContentsMargins(0, 0, 0, 0);
    bar->setSpacing(targetGap);
    column->addWidget(m_message);
    column->addWidget(m_bar);
    sizeStrip();
}

/// The message has two lines, the stop is as high as message and page bar together.
void PanelWindow::sizeStrip()
{
    const auto at = [this](int size) { return static_cast<int>(size * scale()); };
    const QFont text = sized(font(), at(textSize));
    m_pages->setFont(text);
    m_strip->setFont(text);
    m_message->setFixedHeight(at(targetSize));
    m_bar->setFixedHeight(at(targetSize));
    m_strip->layout()->setContentsMargins(targetGap, targetGap, at(stopWidth) + 2 * targetGap,
                                          targetGap);
    m_stop->setFont(sized(font(), at(stopTextSize), true));
}

void PanelWindow::addPage(Page *page, const QString &name)
{
    page->setScale(scale());
    const int index = m_pages->addWidget(page);
    auto *button = new FlatButton(name);
    button->setCheckable(true);
    button->setAutoExclusive(true);
    button->setChecked(index == 0);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_bar->layout()->addWidget(button);
    connect(button, &FlatButton::clicked, this, [this, index] { openPage(index); });
}

void PanelWindow::setBanner(Page *banner)
{
    m_banner = banner;
    banner->setScale(scale());
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, banner);
    m_stop->raise();
    refresh();
}

int PanelWindow::pageCount() const
{
    return m_pages->count();
}

void PanelWindow::openPage(int index)
{
    m_pages->setCurrentIndex(index);
    // The page comes to the top, and would hide the question that keeps it from being used.
    if (m_closing->isOpen())
        m_closing->raise();
    // None but buttons of pages are put there.
    static_cast<FlatButton *>(m_bar->layout()->itemAt(index)->widget())->setChecked(true);
    pageAt(index)->refresh();
}

Page *PanelWindow::pageAt(int index) const
{
    // None but pages are put there.
    return static_cast<Page *>(m_pages->widget(index));
}

void PanelWindow::start()
{
    m_timer.start(busyInterval);
}

int PanelWindow::interval() const
{
    return m_now() - m_touchedAt >= idleFrom ? idleInterval : busyInterval;
}

void PanelWindow::refresh()
{
    m_line.look();
    if (m_banner)
        m_banner->refresh();
    pageAt(m_pages->currentIndex())->refresh();
    showMessage();
    if (m_timer.isActive() && m_timer.interval() != interval())
        m_timer.start(interval());
}

void PanelWindow::showMessage()
{
    const Look look = lookOf(palette());
    m_message->setText(m_line.message());
    const QColor colour = m_line.isMessageBad() ? look.warning : look.text;
    QPalette own = m_message->palette();
    if (own.color(QPalette::WindowText) == colour)
        return;
    own.setColor(QPalette::WindowText, colour);
    m_message->setPalette(own);
}

bool PanelWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (isTouch(*event)) {
        m_touchedAt = m_now();
        if (m_timer.isActive() && m_timer.interval() != busyInterval)
            m_timer.start(busyInterval);
    }
    return QWidget::eventFilter(watched, event);
}

void PanelWindow::placeStop()
{
    const int wide = static_cast<int>(stopWidth * scale());
    const int high = 2 * static_cast<int>(targetSize * scale()) + targetGap;
    m_stop->setGeometry(width() - wide - targetGap, height() - high - targetGap, wide, high);
    m_stop->raise();
}

void PanelWindow::resizeEvent(QResizeEvent *)
{
    sizeStrip();
    for (int i = 0; i < pageCount(); ++i)
        pageAt(i)->setScale(scale());
    if (m_banner)
        m_banner->setScale(scale());
    placeStop();
}

double PanelWindow::scale() const
{
    const double across = static_cast<double>(width()) / leastSize.width();
    const double down = static_cast<double>(height()) / leastSize.height();
    return std::clamp(std::min(across, down), 1.0, highestScale);
}

void PanelWindow::closeEvent(QCloseEvent *event)
{
    if (m_mayClose || m_line.mayRun().isEmpty()) {
        event->accept();
        return;
    }
    event->ignore();
    m_closing->ask();
}

} // namespace dx4::panel
