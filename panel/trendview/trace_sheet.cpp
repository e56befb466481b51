// SPDX-License-Identifier: MIT
// Which registers and bits are shown.
#include "panel/trendview/trace_sheet.h"

#include "panel/trendview/trace_colours.h"
#include "panel/widgets/value_label.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int columns = 4;
constexpr int mostPlaces = 40;
constexpr int besides = 180; // px of title, head and foot
constexpr int driveSize = 18; // px
constexpr int turnWidth = 150; // px

int countOf(const QVector<TraceChoice> &choices, bool isBit)
{
    return static_cast<int>(
        std::count_if(choices.begin(), choices.end(),
                      [&](const TraceChoice &choice) { return (choice.bit >= 0) == isBit; }));
}

} // namespace

TraceSheet::TraceSheet(TrendStore &store, QWidget *page)
    : Sheet(tr("Traces"), page)
    , m_store(store)
{
    setObjectName(QStringLiteral("traces"));
    content()->addLayout(makeHead());
    m_grid = new QGridLayout;
    m_grid->setSpacing(targetGap);
    for (int i = 0; i < mostPlaces; ++i) {
        auto *place = new FlatButton(QString());
        place->setCheckable(true);
        place->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        place->hide();
        connect(place, &FlatButton::clicked, this, [this, i] { toggle(i); });
        m_grid->addWidget(place, i / columns, i % columns);
        m_places.append(place);
    }
    content()->addLayout(m_grid);
    content()->addStretch();
    content()->addLayout(makeFoot());
}

QLayout *TraceSheet::makeHead()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    auto *before = new FlatButton(tr("Drive before"));
    auto *after = new FlatButton(tr("Next drive"));
    before->setFixedWidth(turnWidth);
    after->setFixedWidth(turnWidth);
    m_drive = new QLabel;
    m_drive->setAlignment(Qt::AlignCenter);
    m_drive->setFont(sized(font(), driveSize, true));
    m_drive->setTextFormat(Qt::PlainText);
    row->addWidget(before);
    row->addWidget(m_drive, 1);
    row->addWidget(after);
    connect(before, &FlatButton::clicked, this, [this] { turn(-1); });
    connect(after, &FlatButton::clicked, this, [this] { turn(1); });
    return row;
}

QLayout *TraceSheet::makeFoot()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    m_back = new FlatButton(tr("Back"));
    m_on = new FlatButton(tr("More"));
    auto *done = new FlatButton(tr("Done"));
    m_count = new QLabel;
    m_count->setWordWrap(true);
    done->setFixedWidth(turnWidth);
    row->addWidget(m_count, 1);
    row->addWidget(m_back);
    row->addWidget(m_on);
    row->addWidget(done);
    connect(m_back, &FlatButton::clicked, this, [this] { choose(m_station, m_page - 1); });
    connect(m_on, &FlatButton::clicked, this, [this] { choose(m_station, m_page + 1); });
    connect(done, &FlatButton::clicked, this, &TraceSheet::close);
    return row;
}

QVector<int> TraceSheet::stations() const
{
    QVector<int> found;
    for (const TraceInfo &info : m_store.registers()) {
        if (!found.contains(info.key.station))
            found.append(info.key.station);
    }
    return found;
}

void TraceSheet::turn(int by)
{
    const QVector<int> all = stations();
    if (all.isEmpty())
        return;
    const int count = static_cast<int>(all.size());
    const int index = static_cast<int>(all.indexOf(m_station));
    choose(all.at((index + by + count) % count), 0);
}

void TraceSheet::ask(const QVector<TraceChoice> &choices)
{
    m_choices = choices;
    const QVector<int> all = stations();
    const int first = choices.isEmpty() ? 0 : choices.first().key.station;
    open();
    choose(all.contains(first) ? first : all.value(0), 0);
}

void TraceSheet::choose(int station, int page)
{
    m_station = station;
    m_page = page;
    show();
}

/// Registers first; of the status word the bits that have a name.
QVector<TraceChoice> TraceSheet::offered() const
{
    QVector<TraceChoice> quantities;
    QVector<TraceChoice> bits;
    for (const TraceInfo &info : m_store.registers()) {
        if (info.key.station != m_station)
            continue;
        if (info.counts != Counts::Bits) {
            quantities.append({ info.key, -1 });
            continue;
        }
        for (const int bit : m_store.states().keys())
            bits.append({ info.key, bit });
    }
    return quantities + bits;
}

int TraceSheet::placesOfPage() const
{
    const int rows = (height() - besides) / (targetSize + targetGap);
    return std::clamp(rows, 1, mostPlaces / columns) * columns;
}

bool TraceSheet::isFull(const TraceChoice &choice) const
{
    const bool isBit = choice.bit >= 0;
    return countOf(m_choices, isBit) >= (isBit ? mostLanes : mostTraces);
}

void TraceSheet::toggle(int place)
{
    const TraceChoice choice = offered().value(m_page * placesOfPage() + place);
    if (!m_choices.removeOne(choice) && !isFull(choice))
        m_choices.append(choice);
    Q_EMIT chosen(m_choices);
    show();
}

void TraceSheet::show()
{
    const QVector<TraceChoice> offers = offered();
    const QString drive =
        offers.isEmpty() ? tr("Nothing was read yet") : m_store.find(offers.first().key)->drive;
    m_drive->setText(drive);
    m_count->setText(tr("%1 of %2 traces, %3 of %4 states")
                         .arg(countOf(m_choices, false))
                         .arg(mostTraces)
                         .arg(countOf(m_choices, true))
                         .arg(mostLanes));
    const int last = (static_cast<int>(offers.size()) - 1) / placesOfPage();
    m_page = std::clamp(m_page, 0, std::max(0, last));
    m_back->setVisible(last > 0);
    m_on->setVisible(last > 0);
    m_back->setEnabled(m_page > 0);
    m_on->setEnabled(m_page < last);
    showPlaces(offers);
}

void TraceSheet::showPlaces(const QVector<TraceChoice> &offers)
{
    const int first = m_page * placesOfPage();
    for (int i = 0; i < m_places.size(); ++i) {
        FlatButton *place = m_places.at(i);
        const bool isOffered = i < placesOfPage() && first + i < offers.size();
        place->setVisible(isOffered);
        if (!isOffered)
            continue;
        const TraceChoice &choice = offers.at(first + i);
        const QString name = m_store.nameOf(choice);
        place->setText(choice.bit < 0 ? name : tr("State: %1").arg(name));
        const bool isChosen = m_choices.contains(choice);
        place->setChecked(isChosen);
        place->setEnabled(isChosen || !isFull(choice));
    }
}

void TraceSheet::resizeEvent(QResizeEvent *)
{
    if (isOpen())
        show();
}

} // namespace dx4::panel
