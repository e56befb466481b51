// SPDX-License-Identifier: MIT
// A sheet on which a number is typed with fingers.
#pragma once

#include "panel/widgets/hold_button.h"
#include "panel/widgets/sheet.h"

#include <QLocale>

#include <optional>

class QGridLayout;
class QLabel;

namespace dx4::panel {

/// Takes a number within limits; what is typed is given when its button was held. Keys of a
/// keyboard do as well.
class NumberPad : public Sheet {
    Q_OBJECT

public:
    NumberPad(const QString &title, std::function<host::Duration()> now, QWidget *page);

    /// Opens it empty.
    ///
    /// @param unit     behind the number
    /// @param highest  that is taken; the lowest is 0
    void ask(const QString &unit, double highest);

    /// Types a digit or the decimal mark of the locale; more than fits is left out.
    void type(QChar key);
    void erase();

    /// The number, if there is one within the limits.
    std::optional<double> number() const;

Q_SIGNALS:
    void entered(double number);

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeKeys();
    QWidget *makeSide(std::function<host::Duration()> now);
    void addKey(QGridLayout &keys, int row, int column, const QString &text);
    void sizeDisplay();
    void refresh();

    QLocale m_locale;
    QString m_typed;
    QString m_unit;
    double m_highest = 0.0;
    QWidget *m_keys = nullptr;
    QLabel *m_display = nullptr;
    QLabel *m_limits = nullptr;
    HoldButton *m_enter = nullptr;
};

} // namespace dx4::panel
