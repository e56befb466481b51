// SPDX-License-Identifier: MIT
// Asks where frames are recorded to.
#pragma once

#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

#include <QDateTime>

#include <functional>

class QLabel;
class QLineEdit;

namespace dx4::panel {

/// A folder where a user looks for files.
struct Place {
    QString name; ///< on its button
    QString folder;
};

/// The user's folder and what is plugged in. Asks the kernel alone, never a disk.
QVector<Place> recordPlaces();

/// Proposes a name that tells the time, in one of the places; all of it may be typed over. A file
/// that is there is replaced after a question alone.
class RecordSheet : public Sheet {
    Q_OBJECT

public:
    static constexpr int mostPlaces = 4;

    RecordSheet(std::function<QVector<Place>()> places, QWidget *page);

    /// Opens it with a new name.
    void ask(const QDateTime &now);

    /// Opens it with the question whether this file may be replaced.
    void askToReplace(const QString &file);

    QString file() const;

Q_SIGNALS:
    void wanted(const QString &file, bool mayReplace);

private:
    void setPlace(const QString &folder);
    void showReplacing(bool isReplacing);
    void addPlaces();

    const std::function<QVector<Place>()> m_places;
    QLineEdit *m_file;
    QWidget *m_placeRow;
    QLabel *m_question;
    FlatButton *m_record;
    FlatButton *m_cancel;
    bool m_isReplacing = false;
};

} // namespace dx4::panel
