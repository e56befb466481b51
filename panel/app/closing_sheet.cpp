// SPDX-License-Identifier: MIT
// What is asked when the window is to be closed while a motor runs.
#include "panel/app/closing_sheet.h"

#include "panel/widgets/look.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
ClosingSheet::ClosingSheet(PanelLine &line, std::function<host::Duration()> now, QWidget *page)
    : Sheet(tr("Close the panel?"), page)
    , m_line(line)
    , m_text(new QLabel)
    , m_stay(new FlatButton(tr("Stay")))
    , m_stop(new FlatButton(tr("Stop and close")))
    , m_leave(new HoldButton(tr("Hold to close without a stop"), std::move(now)))
{
    setObjectName(QStringLiteral("closing"));
    m_text->setObjectName(QStringLiteral("question"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    content()->addWidget(m_text);
    content()->addStretch();
    content()->addWidget(m_leave);
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    row->addWidget(m_stay);
    row->addWidget(m_stop);
    content()->addLayout(row);
    connect(m_stay, &FlatButton::clicked, this, [this] {
        m_isWaiting = false;
        close();
    });
    connect(m_stop, &FlatButton::clicked, this, &ClosingSheet::stopAndClose);
    connect(m_leave, &HoldButton::held, this, &ClosingSheet::agreed);
    connect(&line, &PanelLine::stopped, this, &ClosingSheet::takeEnd);
}

void ClosingSheet::ask()
{
    m_isWaiting = false;
    m_text->setText(tr("May be running: %1. Drives are stopped before the panel closes.")
                        .arg(m_line.namesOf(m_line.mayRun())));
    m_leave->hide();
    m_stop->setEnabled(true);
    open();
    m_stay->setFocus();
}

void ClosingSheet::stopAndClose()
{
    m_isWaiting = true;
    m_stop->setEnabled(false);
    m_text->setText(tr("Stopping. The panel closes when the drives have confirmed."));
    m_line.stopAll();
}

void ClosingSheet::takeEnd(const QVector<int> &unconfirmed)
{
    if (!std::exchange(m_isWaiting, false))
        return;
    if (unconfirmed.isEmpty()) {
        Q_EMIT agreed();
        return;
    }
    m_text->setText(tr("Stop not confirmed, may still run: %1. Go and see before you close.")
                        .arg(m_line.namesOf(unconfirmed)));
    m_stop->setEnabled(true);
    m_leave->show();
}

} // namespace dx4::panel
