// SPDX-License-Identifier: MIT
// What asks for a number or a name to look for.
#include "panel/parameters/search_sheet.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace dx4::panel {
namespace {

constexpr int textSize = 24; // px

} // namespace

SearchSheet::SearchSheet(ParameterTable &table, QWidget *page)
    : Sheet(tr("Find a parameter"), page)
    , m_table(table)
{
    setObjectName(QStringLiteral("search"));
    auto *row = new QHBoxLayout;
    row->setSpacing(2 * targetGap);
    row->addWidget(makeSide(), 1);
    row->addWidget(makeKeys(), 1);
    content()->addLayout(row, 1);
}

void SearchSheet::addKey(QGridLayout &keys, int row, int column, const QString &text)
{
    auto *key = new FlatButton(text);
    key->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    key->setFocusPolicy(Qt::NoFocus);
    keys.addWidget(key, row, column);
    connect(key, &FlatButton::clicked, this, [this, text] { m_text->insert(text); });
}

QWidget *SearchSheet::makeKeys()
{
    auto *box = new QWidget;
    auto *keys = new QGridLayout(box);
    keys->setContentsMargins(0, 0, 0, 0);
    keys->setSpacing(targetGap);
    for (int digit = 1; digit <= 9; ++digit)
        addKey(*keys, (9 - digit) / 3, (digit - 1) % 3, QString::number(digit));
    addKey(*keys, 3, 0, QStringLiteral("0"));
    // The drive's own notation, whatever the decimal mark of the user.
    addKey(*keys, 3, 1, QStringLiteral("."));
    addKey(*keys, 3, 2, QStringLiteral("c"));
    return box;
}

QWidget *SearchSheet::makeSide()
{
    auto *box = new QWidget;
    auto *side = new QVBoxLayout(box);
    side->setContentsMargins(0, 0, 0, 0);
    side->setSpacing(targetGap);
    m_text = new QLineEdit;
    m_text->setMinimumHeight(targetSize);
    m_text->setTextMargins(targetGap, 0, targetGap, 0);
    m_text->setFont(sized(font(), textSize));
    m_text->setPlaceholderText(tr("8.2 or a name"));
    m_text->setAccessibleName(tr("Number or name"));
    m_found = new QLabel;
    m_found->setWordWrap(true);
    m_found->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    auto *erase = new FlatButton(tr("Delete"));
    auto *all = new FlatButton(tr("Show all"));
    auto *done = new FlatButton(tr("Show these"));
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    row->addWidget(all, 1);
    row->addWidget(done, 1);
    side->addWidget(m_text);
    side->addWidget(erase);
    side->addWidget(m_found, 1);
    side->addLayout(row);
    connect(m_text, &QLineEdit::textChanged, this, &SearchSheet::look);
    connect(m_text, &QLineEdit::returnPressed, this, &Sheet::close);
    connect(erase, &FlatButton::clicked, m_text, &QLineEdit::backspace);
    connect(done, &FlatButton::clicked, this, &Sheet::close);
    connect(all, &FlatButton::clicked, this, [this] {
        m_text->clear();
        close();
    });
    return box;
}

void SearchSheet::ask()
{
    open();
    m_text->setText(m_table.search());
    look(m_text->text());
    m_text->selectAll();
    m_text->setFocus();
}

void SearchSheet::look(const QString &text)
{
    Q_EMIT entered(text);
    m_found->setText(text.isEmpty() ? tr("All rows are shown.")
                                    : tr("%1 found").arg(m_table.rowCount()));
}

} // namespace dx4::panel
