// SPDX-License-Identifier: MIT
// Which registers and bits are shown.
#pragma once

#include "panel/trend/trend_store.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/sheet.h"

class QGridLayout;
class QLabel;

namespace dx4::panel {

/// One drive at a time, its registers and the bits of its status word as buttons; each touch is
/// taken at once.
class TraceSheet : public Sheet {
    Q_OBJECT

public:
    /// @param store  outlives the sheet
    TraceSheet(TrendStore &store, QWidget *page);

    void ask(const QVector<TraceChoice> &choices);

Q_SIGNALS:
    void chosen(const QVector<dx4::panel::TraceChoice> &choices);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QLayout *makeHead();
    QLayout *makeFoot();
    void turn(int by);
    void choose(int station, int page);
    QVector<int> stations() const;
    QVector<TraceChoice> offered() const;
    int placesOfPage() const;
    bool isFull(const TraceChoice &choice) const;
    void toggle(int place);
    void show();
    void showPlaces(const QVector<TraceChoice> &offers);
    using QWidget::show;

    TrendStore &m_store;
    QVector<TraceChoice> m_choices;
    int m_station = 0;
    int m_page = 0;
    QLabel *m_drive = nullptr;
    QLabel *m_count = nullptr;
    QGridLayout *m_grid = nullptr;
    QVector<FlatButton *> m_places;
    FlatButton *m_back = nullptr;
    FlatButton *m_on = nullptr;
};

} // namespace dx4::panel
