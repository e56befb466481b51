// SPDX-License-Identifier: MIT
// A table for fingers: it turns by pages, and nothing in it has to be hit.
#pragma once

#include <QTableView>

namespace dx4::panel {

/// Draws what went wrong in the colour of warnings, and what is beside the point faded; see
/// TableRole. Rows are as high as their text.
class LineTable : public QTableView {
    Q_OBJECT

public:
    explicit LineTable(QAbstractItemModel &model, QWidget *parent = nullptr);

    /// @param size  of the text, px
    void setTextSize(int size);

    /// The column that gets what the others leave; those are as wide as their longest text.
    ///
    /// @param texts  the longest of each column, besides its heading
    void setColumns(int stretched, const QStringList &texts);

    /// Moves by so many pages.
    void turn(int pages);

    bool canTurnUp() const;
    bool canTurnDown() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void arrangeRows();
    void arrangeColumns();
    int neededWidth(int column) const;

    int m_stretched = 0;
    QStringList m_texts;
};

} // namespace dx4::panel
