// SPDX-License-Identifier: MIT
// What the view is to stand still for.
#include "panel/trendview/trigger_sheet.h"

#include "panel/widgets/look.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace dx4::panel {
namespace {

constexpr quint16 highestCount = 0xFFFF;
constexpr quint16 highestSigned = 0x7FFF;

} // namespace

TriggerSheet::TriggerSheet(TrendStore &store, const std::function<host::Duration()> &now,
                           QWidget *page)
    : Sheet(tr("Trigger"), page)
    , m_store(store)
    , m_text(new QLabel)
    , m_rises(new FlatButton(QString()))
    , m_falls(new FlatButton(QString()))
    , m_off(new FlatButton(tr("Do not wait")))
    , m_pad(new NumberPad(tr("Level of the trigger"), now, page))
{
    setObjectName(QStringLiteral("trigger"));
    m_text->setWordWrap(true);
    auto *fault = new FlatButton(tr("A fault of any drive"));
    auto *back = new FlatButton(tr("Cancel"));
    content()->addWidget(m_text);
    content()->addWidget(fault);
    content()->addWidget(m_rises);
    content()->addWidget(m_falls);
    content()->addStretch();
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    row->addWidget(m_off);
    row->addWidget(back);
    content()->addLayout(row);
    connect(fault, &FlatButton::clicked, this, [this] { arm(TriggerRule::When::Fault, 0.0); });
    connect(m_rises, &FlatButton::clicked, this, [this] { askLevel(TriggerRule::When::Rises); });
    connect(m_falls, &FlatButton::clicked, this, [this] { askLevel(TriggerRule::When::Falls); });
    connect(back, &FlatButton::clicked, this, &TriggerSheet::close);
    connect(m_off, &FlatButton::clicked, this, [this] {
        m_store.disarm();
        close();
    });
    connect(m_pad, &NumberPad::entered, this, [this](double level) { arm(m_when, level); });
}

void TriggerSheet::ask(const TraceChoice &choice)
{
    m_choice = choice;
    const QString name = m_store.nameOf(choice);
    const bool hasLevel = choice.bit < 0 && !name.isEmpty();
    m_text->setText(tr("The picture stands still with the moment in its middle. "
                       "The recording goes on."));
    const TraceInfo *info = m_store.find(choice.key);
    const QString drive = info ? info->drive : QString();
    m_rises->setText(tr("%1: %2 rises to a level...").arg(drive, name));
    m_falls->setText(tr("%1: %2 falls to a level...").arg(drive, name));
    m_rises->setVisible(hasLevel);
    m_falls->setVisible(hasLevel);
    m_off->setEnabled(m_store.isArmed());
    open();
}

/// The number pad has the page for itself: two sheets would enable what lies below them by turns.
void TriggerSheet::askLevel(TriggerRule::When when)
{
    m_when = when;
    close();
    const TraceInfo *info = m_store.find(m_choice.key);
    if (!info)
        return;
    const quint16 highest = info->scaling.isSigned ? highestSigned : highestCount;
    m_pad->ask(info->scaling.unit, info->scaling.quantity(highest));
}

void TriggerSheet::arm(TriggerRule::When when, double level)
{
    m_store.arm({ when, m_choice.key, level });
    if (isOpen())
        close();
}

} // namespace dx4::panel
