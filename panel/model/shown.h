// SPDX-License-Identifier: MIT
// What a screen may say of a register: no value looks newer than it is.
#pragma once

#include "host/service/line_snapshot.h"

#include <QCoreApplication>
#include <QLocale>
#include <QMap>

namespace dx4::panel {

/// Ages from which a value is grey, and from which it is not shown any more.
inline constexpr host::Duration oldFrom = std::chrono::seconds(5);
inline constexpr host::Duration goneFrom = std::chrono::seconds(30);

/// A value as it is drawn.
struct Shown {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::Shown)

public:
    enum class Trust {
        Fresh,
        Old, ///< grey, with its age
        Gone, ///< dashes: too old, or never known
    };

    Trust trust = Trust::Gone;
    QString number = dashes(); ///< quantity or words
    QString unit; ///< empty for words and dashes
    double quantity = 0.0; ///< what the number says; 0 for words and dashes
    QString age; ///< "7 s old"; empty unless old
    bool failed = false; ///< the last read of it was given up
    bool pending =
        false; ///< it is the value that was asked for; the station did not confirm it yet

    /// "49.98 Hz".
    QString text() const;

    /// What is to be known beside it: "7 s old, read failed"; empty where all is well.
    QString marks() const;

    /// The text with its marks, for one line and for screen readers.
    QString fullText() const;

    static QString dashes() { return QStringLiteral("---"); }
};

/// A register as a quantity.
///
/// @param value  null: not known
/// @param since  time since the snapshot was taken
Shown showQuantity(const host::RegisterValue *value, host::Duration since, const QLocale &locale);

/// The status word: the words of its set bits. A bit without a word is shown as its number.
Shown showStates(const host::RegisterValue *value, host::Duration since,
                 const QMap<int, QString> &states);

/// The fault code by its word. A code without one is shown as its number.
Shown showFault(const host::RegisterValue *value, host::Duration since,
                const QMap<int, QString> &faults);

/// Age of a value now.
host::Duration ageOf(const host::RegisterValue &value, host::Duration since);

} // namespace dx4::panel
