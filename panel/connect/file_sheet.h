// SPDX-License-Identifier: MIT
// Asks which configuration is to be opened.
#pragma once

#include "panel/widgets/sheet.h"

class QGridLayout;
class QLineEdit;

namespace dx4::panel {

/// Offers the files beside the one that runs, and takes any other by its path.
class FileSheet : public Sheet {
    Q_OBJECT

public:
    static constexpr int columns = 3;
    static constexpr int mostFiles = 9;

    explicit FileSheet(QWidget *page);

    /// @param files  paths that are offered
    void ask(const QString &current, const QStringList &files);

Q_SIGNALS:
    void chosen(const QString &file);

private:
    void addFile(int place, const QString &file);
    void choose(const QString &file);

    QLineEdit *m_path;
    QGridLayout *m_grid;
};

} // namespace dx4::panel
