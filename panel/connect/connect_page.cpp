// SPDX-License-Identifier: MIT
// The page of ports, plan and configuration.
#include "panel/connect/connect_page.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace dx4::panel {
namespace {

// Sizes of texts in px, at a scale of 1.
constexpr int headSize = 18;
constexpr int buttonSize = 15;
constexpr int cellSize = 14;

constexpr int headLines = 2;
constexpr int narrowGap = 4; // px between texts

} // namespace

ConnectPage::ConnectPage(ConnectView &view, QWidget *parent)
    : Page(parent)
    , m_view(view)
    , m_head(new QLabel)
    , m_body(new QStackedWidget)
{
    setObjectName(QStringLiteral("connect"));
    m_head->setObjectName(QStringLiteral("head"));
    m_head->setTextFormat(Qt::PlainText);
    m_head->setWordWrap(true);
    m_head->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(targetGap, targetGap, targetGap, 0);
    column->setSpacing(narrowGap);
    column->addWidget(m_head);
    column->addLayout(makeButtons());
    column->addWidget(m_body, 1);
    m_ports = new LineTable(view.ports());
    m_ports->setAccessibleName(tr("Ports"));
    m_ports->setObjectName(QStringLiteral("ports"));
    m_ports->setColumns(1,
                        { tr("%1, this line").arg(QStringLiteral("/dev/ttyUSB00")), QString(),
                          QStringLiteral("dx4-panel (process 8888888)") });
    m_plan = new LineTable(view.plan());
    m_plan->setAccessibleName(tr("Plan"));
    m_plan->setObjectName(QStringLiteral("plan"));
    m_plan->setColumns(1,
                       { QString(), QString(), QStringLiteral("888"), QStringLiteral("8888.8") });
    m_body->addWidget(m_ports);
    m_body->addWidget(m_plan);
    m_body->addWidget(makeConfiguration());
    m_sheet = new FileSheet(this);
    connect(m_sheet, &FileSheet::chosen, this, [this](const QString &file) {
        m_view.open(file);
        open(Configuration);
    });
    setScale(1.0);
    open(Ports);
}

FlatButton *ConnectPage::makeButton(const QString &text, const char *name)
{
    auto *button = new FlatButton(text, this);
    button->setObjectName(QString::fromLatin1(name));
    button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    return button;
}

QBoxLayout *ConnectPage::makeButtons()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    const QString names[] = { tr("Ports"), tr("Plan"), tr("Configuration") };
    for (int i = 0; i < 3; ++i) {
        FlatButton *tab = makeButton(names[i], "tab");
        tab->setCheckable(true);
        m_tabs.append(tab);
        row->addWidget(tab);
        connect(tab, &FlatButton::clicked, this, [this, i] { open(static_cast<View>(i)); });
    }
    m_up = makeButton(tr("Up"), "up");
    m_down = makeButton(tr("Down"), "down");
    m_open = makeButton(tr("Open another..."), "open");
    m_take = makeButton(tr("Take over"), "take over");
    row->addStretch();
    for (FlatButton *button : { m_up, m_down, m_open, m_take })
        row->addWidget(button);
    connect(m_up, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(m_down, &FlatButton::clicked, this, [this] { turn(1); });
    connect(m_open, &FlatButton::clicked, this,
            [this] { m_sheet->ask(m_view.running().file, m_view.files()); });
    connect(m_take, &FlatButton::clicked, this, [this] {
        m_view.takeOver();
        refresh();
    });
    return row;
}

QWidget *ConnectPage::makeConfiguration()
{
    m_detail = new QPlainTextEdit;
    m_detail->setObjectName(QStringLiteral("detail"));
    m_detail->setAccessibleName(tr("Configuration"));
    m_detail->setReadOnly(true);
    m_detail->setFrameShape(QFrame::NoFrame);
    m_detail->setTabChangesFocus(true);
    m_detail->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_detail->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return m_detail;
}

void ConnectPage::open(View view)
{
    m_body->setCurrentIndex(view);
    for (int i = 0; i < m_tabs.size(); ++i)
        m_tabs[i]->setChecked(i == view);
    m_open->setVisible(view == Configuration);
    m_take->setVisible(view == Configuration);
    refresh();
}

void ConnectPage::turn(int pages)
{
    auto *area = static_cast<QAbstractScrollArea *>(m_body->currentWidget());
    QScrollBar *bar = area->verticalScrollBar();
    bar->setValue(bar->value() + pages * std::max(1, bar->pageStep() - 1));
    refresh();
}

QString ConnectPage::headText() const
{
    switch (m_body->currentIndex()) {
    case Ports:
        if (!m_view.arePortsKnown())
            return tr("Ports are looked for");
        return m_view.ports().rowCount() == 0 ? tr("This machine has no serial port")
                                              : tr("Ports of this machine, and who holds them");
    case Plan:
        return m_view.planText();
    default:
        return m_view.stateText();
    }
}

void ConnectPage::showTexts()
{
    const Look look = lookOf(palette());
    m_head->setText(headText());
    const bool isBad = m_body->currentIndex() == Configuration && m_view.isStateBad();
    setTextColour(*m_head, isBad ? look.warning : look.text);
    // Set anew it would begin at its top again.
    const QString detail = m_view.detailText();
    if (m_detail->toPlainText() != detail)
        m_detail->setPlainText(detail);
}

void ConnectPage::showButtons()
{
    const auto *area = static_cast<QAbstractScrollArea *>(m_body->currentWidget());
    const QScrollBar *bar = area->verticalScrollBar();
    m_up->setEnabled(bar->value() > bar->minimum());
    m_down->setEnabled(bar->value() < bar->maximum());
    const ConnectView::Stage stage = m_view.stage();
    m_open->setEnabled(stage != ConnectView::Stage::Checking
                       && stage != ConnectView::Stage::Taking);
    m_take->setEnabled(m_view.canTakeOver());
}

void ConnectPage::refresh()
{
    if (!m_sheet)
        return;
    m_view.look();
    showTexts();
    showButtons();
}

void ConnectPage::setScale(double scale)
{
    const auto at = [scale](int size) { return static_cast<int>(size * scale); };
    m_head->setFont(sized(font(), at(headSize), true));
    m_head->setFixedHeight(headLines * m_head->fontMetrics().height());
    for (LineTable *table : { m_ports, m_plan })
        table->setTextSize(at(cellSize));
    m_detail->setFont(sized(font(), at(cellSize)));
    const auto buttons = findChildren<FlatButton *>(QString(), Qt::FindDirectChildrenOnly);
    for (FlatButton *button : buttons)
        button->setFont(sized(font(), at(buttonSize)));
    refresh();
}

void ConnectPage::resizeEvent(QResizeEvent *)
{
    refresh();
}

} // namespace dx4::panel
