// SPDX-License-Identifier: MIT
// One parameter: its values in full, and what was written to it.
#include "panel/parameters/detail_sheet.h"

#include "host/link/notation.h"
#include "panel/model/shown.h"
#include "panel/widgets/flat_button.h"
#include "register_tables.h"

#include <QDateTime>
#include <QLabel>
#include <QVBoxLayout>

namespace dx4::panel {
namespace {

QString endText(int end)
{
    return QString::fromLatin1(host::writeEndName(static_cast<host::WriteEnd>(end)));
}

} // namespace

QString writeText(const ParameterWrite &write)
{
    const QString when =
        QDateTime::fromMSecsSinceEpoch(write.time).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    const QString was = write.before ? QString::number(*write.before) : QStringLiteral("?");
    return DetailSheet::tr("%1   %2 to %3, %4")
        .arg(when, was, QString::number(write.after), endText(write.end));
}

DetailSheet::DetailSheet(ParameterBook &book, ParameterTable &table, ParameterJournal &journal,
                         QWidget *page)
    : Sheet(tr("One parameter"), page)
    , m_book(book)
    , m_table(table)
    , m_journal(journal)
    , m_text(new QLabel)
    , m_written(new QLabel)
    , m_lines(new LinePager)
{
    setObjectName(QStringLiteral("detail"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_written->setWordWrap(true);
    auto *close = new FlatButton(tr("Close"));
    content()->addWidget(m_text);
    content()->addWidget(m_written);
    content()->addWidget(m_lines, 1);
    content()->addWidget(close);
    connect(close, &FlatButton::clicked, this, &Sheet::close);
    connect(&journal, &ParameterJournal::listed, this, &DetailSheet::takeWrites);
}

QString DetailSheet::sideText(ParameterBook::Place place) const
{
    const ParameterSide &side = m_book.side(place);
    const auto value = side.value(m_address);
    const ParameterNames::Label *label = m_book.names().find(side.set.station, m_address);
    const QString number = QString::number(value.value_or(0));
    const QString quantity = quantityText(label, value.value_or(0));
    const bool isAbsent = side.known(m_address) == ParameterSide::Known::Absent;
    return tr("%1 (%2): %3")
        .arg(side.name, side.stateText(m_book.now()),
             value          ? (number == quantity ? number : tr("%1 (%2)").arg(quantity, number))
                 : isAbsent ? tr("refused, the station does not have it")
                            : Shown::dashes());
}

void DetailSheet::ask(int address)
{
    m_address = address;
    const ParameterNames::Label *label = m_book.names().find(m_table.countedStation(), address);
    QStringList texts { host::fullAddress(REG_LIST[TypeF], address)
                        + (label ? QStringLiteral("  ") + label->name : QString()) };
    for (const ParameterBook::Place place : { ParameterBook::First, ParameterBook::Second }) {
        if (m_book.side(place).kind != ParameterSide::Kind::Nothing)
            texts.append(sideText(place));
    }
    m_text->setText(texts.join(QLatin1Char('\n')));
    const int station = m_table.countedStation();
    const bool isKept = m_journal.isThere() && station != 0;
    m_written->setText(isKept ? tr("Reading the journal...")
                              : tr("No journal is kept of what was written."));
    m_lines->setLines({});
    open();
    if (isKept)
        m_journal.list(station, address);
}

void DetailSheet::takeWrites(int station, int address, const QVector<ParameterWrite> &writes)
{
    if (!isOpen() || address != m_address || station != m_table.countedStation())
        return;
    if (!m_journal.trouble().isEmpty()) {
        m_written->setText(m_journal.trouble());
        return;
    }
    const auto count = m_journal.writes(station, address);
    m_written->setText(tr("%1: written %2 times. Its memory wears with each.")
                           .arg(m_book.nameOf(station))
                           .arg(count.value_or(writes.size())));
    QStringList lines;
    for (const ParameterWrite &write : writes)
        lines.append(writeText(write));
    m_lines->setLines(lines);
}

} // namespace dx4::panel
