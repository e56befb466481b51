// SPDX-License-Identifier: MIT
// A sheet on which a number is typed with fingers.
#include "panel/widgets/number_pad.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace dx4::panel {
namespace {

constexpr int mostCharacters = 7; // "9999.99"
constexpr int displaySize = 48; // px, as the others on the smallest screen
constexpr int keySize = 20; // px
constexpr int displayWidth = 320; // px, of the longest number with its unit

} // namespace

NumberPad::NumberPad(const QString &title, std::function<host::Duration()> now, QWidget *page)
    : Sheet(title, page)
{
    m_locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    auto *row = new QHBoxLayout;
    row->setSpacing(2 * targetGap);
    row->addWidget(makeSide(std::move(now)), 1);
    row->addWidget(makeKeys(), 1);
    content()->addLayout(row, 1);
    sizeDisplay();
}

void NumberPad::sizeDisplay()
{
    m_display->setFont(sized(font(), static_cast<int>(displaySize * textScale())));
    m_keys->setFont(sized(font(), static_cast<int>(keySize * textScale())));
    m_display->setMinimumWidth(static_cast<int>(displayWidth * textScale()));
}

void NumberPad::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        sizeDisplay();
    Sheet::changeEvent(event);
}

void NumberPad::addKey(QGridLayout &keys, int row, int column, const QString &text)
{
    auto *key = new FlatButton(text);
    key->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    key->setObjectName(QStringLiteral("key ") + text);
    keys.addWidget(key, row, column);
    connect(key, &FlatButton::clicked, this, [this, text] { type(text.at(0)); });
}

QWidget *NumberPad::makeKeys()
{
    m_keys = new QWidget;
    auto *keys = new QGridLayout(m_keys);
    keys->setContentsMargins(0, 0, 0, 0);
    keys->setSpacing(targetGap);
    for (int digit = 1; digit <= 9; ++digit)
        addKey(*keys, (9 - digit) / 3, (digit - 1) % 3, QString::number(digit));
    addKey(*keys, 3, 0, QStringLiteral("0"));
    addKey(*keys, 3, 1, QString(m_locale.decimalPoint()));
    auto *back = new FlatButton(tr("Delete"));
    back->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    keys->addWidget(back, 3, 2);
    connect(back, &FlatButton::clicked, this, &NumberPad::erase);
    return m_keys;
}

QWidget *NumberPad::makeSide(std::function<host::Duration()> now)
{
    auto *box = new QWidget;
    auto *side = new QVBoxLayout(box);
    side->setContentsMargins(0, 0, 0, 0);
    side->setSpacing(targetGap);
    m_display = new QLabel;
    m_limits = new QLabel;
    m_limits->setWordWrap(true);
    m_enter = new HoldButton(tr("Hold to set"), std::move(now));
    auto *cancel = new FlatButton(tr("Cancel"));
    side->addWidget(m_display);
    side->addWidget(m_limits);
    side->addStretch();
    side->addWidget(m_enter);
    side->addWidget(cancel);
    connect(cancel, &FlatButton::clicked, this, &Sheet::close);
    connect(m_enter, &HoldButton::held, this, [this] {
        const auto wanted = number();
        close();
        if (wanted)
            Q_EMIT entered(*wanted);
    });
    return box;
}

void NumberPad::ask(const QString &unit, double highest)
{
    m_typed.clear();
    m_unit = unit;
    m_highest = highest;
    refresh();
    open();
    setFocus();
}

void NumberPad::type(QChar key)
{
    const bool isMark = QString(key) == QString(m_locale.decimalPoint());
    const bool isTaken = key.isDigit() || (isMark && !m_typed.isEmpty() && !m_typed.contains(key));
    if (isTaken && m_typed.size() < mostCharacters)
        m_typed.append(key);
    refresh();
}

void NumberPad::erase()
{
    m_typed.chop(1);
    refresh();
}

std::optional<double> NumberPad::number() const
{
    bool isNumber = false;
    const double number = m_locale.toDouble(m_typed, &isNumber);
    if (!isNumber || number < 0.0 || number > m_highest)
        return std::nullopt;
    return number;
}

void NumberPad::refresh()
{
    const Look look = lookOf(palette());
    const bool isWrong = !m_typed.isEmpty() && !number();
    m_display->setText((m_typed.isEmpty() ? QStringLiteral("_") : m_typed) + QLatin1Char(' ')
                       + m_unit);
    m_limits->setText(tr("0 to %1 %2").arg(m_locale.toString(m_highest, 'f', 2), m_unit));
    setTextColour(*m_limits, isWrong ? look.warning : look.faded);
    m_enter->setEnabled(number().has_value());
}

void NumberPad::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Backspace)
        erase();
    else if (!event->text().isEmpty())
        type(event->text().at(0));
    else
        Sheet::keyPressEvent(event);
}

} // namespace dx4::panel
