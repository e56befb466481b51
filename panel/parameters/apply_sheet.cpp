// SPDX-License-Identifier: MIT
// What asks before parameters are written, and tells what came of it.
#include "panel/parameters/apply_sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
ApplySheet::ApplySheet(ParameterRestore &restore, std::function<host::Duration()> now,
                       QWidget *page)
    : Sheet(tr("Write parameters"), page)
    , m_restore(restore)
    , m_text(new QLabel)
    , m_refusal(new QLabel)
    , m_lines(new LinePager)
    , m_agree(new FlatButton(tr("Write them all the same")))
    , m_write(new HoldButton(tr("Hold to write"), std::move(now)))
    , m_close(new FlatButton(tr("Cancel")))
    , m_end(new FlatButton(tr("End it")))
{
    setObjectName(QStringLiteral("apply"));
    m_text->setObjectName(QStringLiteral("what"));
    m_refusal->setObjectName(QStringLiteral("refusal"));
    for (QLabel *label : { m_text, m_refusal }) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    QFont bold; // of the page's size, whatever that is
    bold.setBold(true);
    m_text->setFont(bold);
    m_agree->setCheckable(true);
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    row->addWidget(m_close, 1);
    row->addWidget(m_end, 1);
    row->addWidget(m_write, 2);
    content()->addWidget(m_text);
    content()->addWidget(m_refusal);
    content()->addWidget(m_lines, 1);
    content()->addWidget(m_agree);
    content()->addLayout(row);
    connect(m_agree, &FlatButton::toggled, this, &ApplySheet::refresh);
    connect(m_close, &FlatButton::clicked, this, &ApplySheet::leave);
    connect(m_end, &FlatButton::clicked, &m_restore, &ParameterRestore::cancel);
    connect(m_write, &HoldButton::held, this, &ApplySheet::begin);
    connect(&m_restore, &ParameterRestore::changed, this, &ApplySheet::refresh);
}

void ApplySheet::ask()
{
    if (!m_restore.isRunning()) {
        m_restore.clear();
        m_plan = m_restore.plan();
    }
    m_agree->setChecked(false);
    open();
    refresh();
    m_close->setFocus();
}

void ApplySheet::leave()
{
    if (m_restore.hasEnded())
        m_restore.clear();
    close();
}

void ApplySheet::begin()
{
    m_restore.begin(m_plan, m_agree->isChecked());
    refresh();
}

void ApplySheet::refresh()
{
    // Whoever closed it in the middle is told the end all the same.
    if (!isOpen() && m_restore.hasEnded())
        open();
    if (!isOpen())
        return;
    const bool isAsking = !m_restore.isRunning() && !m_restore.hasEnded();
    m_agree->setVisible(isAsking && m_plan.isOfOther());
    m_write->setVisible(isAsking);
    m_end->setVisible(m_restore.isRunning());
    m_close->setText(isAsking ? tr("Cancel") : tr("Close"));
    if (isAsking)
        showQuestion();
    else if (m_restore.isRunning())
        showProgress();
    else
        showReport();
    m_refusal->setVisible(!m_refusal->text().isEmpty());
}

void ApplySheet::showQuestion()
{
    const int registers = static_cast<int>(m_plan.set.values.size());
    const QString count = registers == 1 ? tr("1 register") : tr("%1 registers").arg(registers);
    // All at once: a name may hold what looks like a place for the next one.
    m_text->setText(tr("Write %1 from %2 (station %3)\nto %4 (station %5)?")
                        .arg(count, m_plan.source, QString::number(m_plan.sourceStation),
                             m_plan.drive, QString::number(m_plan.station)));
    m_refusal->setText(m_restore.refusal(m_plan));
    setTextColour(*m_refusal, lookOf(palette()).warning);
    m_lines->setLines(m_plan.changes);
    m_agree->setText(tr("The values are those of station %1. Write them to station %2 all the same")
                         .arg(m_plan.sourceStation)
                         .arg(m_plan.station));
    m_write->setText(tr("Hold to write %1").arg(count));
    const bool isAgreed = !m_plan.isOfOther() || m_agree->isChecked();
    m_write->setEnabled(m_refusal->text().isEmpty() && isAgreed);
}

void ApplySheet::showProgress()
{
    m_text->setText(
        tr("Writing to %1 (station %2).\n%3")
            .arg(m_plan.drive, QString::number(m_plan.station), m_restore.progressText()));
    m_refusal->clear();
    m_lines->setLines({});
}

void ApplySheet::showReport()
{
    m_text->setText(m_restore.isRestored()
                        ? tr("%1 holds every value.").arg(m_plan.drive)
                        : tr("%1 was not seen to hold every value.").arg(m_plan.drive));
    m_refusal->clear();
    m_lines->setLines(m_restore.report());
}

} // namespace dx4::panel
