// SPDX-License-Identifier: MIT
// Chooses one station, or all.
#include "panel/lineview/station_sheet.h"

#include "panel/lineview/line_view.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/look.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace dx4::panel {

StationSheet::StationSheet(LineView &view, QWidget *page)
    : Sheet(tr("Station"), page)
    , m_view(view)
    , m_grid(new QGridLayout)
{
    m_grid->setHorizontalSpacing(targetGap);
    m_grid->setVerticalSpacing(targetGap);
    content()->addLayout(m_grid);
    content()->addStretch();
}

void StationSheet::addButton(int place, int station, const QString &text)
{
    // A name goes on in a second line.
    const int room = 3 * (width() / columns - 3 * targetGap) / 2;
    auto *button = new FlatButton(fontMetrics().elidedText(text, Qt::ElideRight, room));
    button->setMinimumSize(targetSize, targetSize);
    button->setAccessibleName(text);
    button->setCheckable(true);
    button->setChecked(station == m_view.filter().station);
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_grid->addWidget(button, place / columns, place % columns);
    button->show(); // the sheet is open already
    connect(button, &FlatButton::clicked, this, [this, station] {
        close();
        Q_EMIT chosen(station);
    });
}

void StationSheet::ask()
{
    const auto buttons = findChildren<FlatButton *>();
    for (FlatButton *button : buttons) {
        m_grid->removeWidget(button);
        button->hide();
        button->deleteLater(); // it may be the one whose click is under way
    }
    open();
    addButton(0, 0, tr("All"));
    int place = 1;
    for (int station : m_view.stations()) {
        if (place < mostButtons)
            addButton(place++, station, m_view.stationName(station));
    }
}

} // namespace dx4::panel
