// SPDX-License-Identifier: MIT
// A sheet that asks which events of the history are wanted.
#include "panel/alarms/filter_sheet.h"

#include "host/base/length.h"
#include "panel/widgets/look.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

using journal::EventKind;

/// Kinds that are asked for together, for fingers.
struct KindGroup {
    const char *name;
    QVector<EventKind> kinds;
};

const QVector<KindGroup> &groups()
{
    static const QVector<KindGroup> all = {
        { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Faults"), { EventKind::Fault } },
        { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Line"),
          { EventKind::Line, EventKind::Station } },
        { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Stops"), { EventKind::Stop } },
        { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Writes"),
          { EventKind::Write, EventKind::Parameter } },
        { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Messages"),
          { EventKind::Alarm, EventKind::Notice, EventKind::Journal } },
        { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Acknowledged"),
          { EventKind::Acknowledgement } },
    };
    return all;
}

struct Span {
    const char *name;
    journal::Time length; // ms; 0: all
};

constexpr journal::Time hourMs = 3'600'000;

constexpr Span spans[] = {
    { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Any time"), 0 },
    { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Last hour"), hourMs },
    { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Last 24 h"), 24 * hourMs },
    { QT_TRANSLATE_NOOP("dx4::panel::FilterSheet", "Last 7 days"), 7 * 24 * hourMs },
};

QVector<int> withAll(const QVector<int> &stations)
{
    return QVector<int> { 0 } + stations;
}

} // namespace

FilterSheet::FilterSheet(const AlarmWords &words, QVector<int> stations, QWidget *page)
    : Sheet(tr("Show in the history"), page)
    , m_words(words)
    , m_stations(withAll(std::move(stations)))
{
    setObjectName(QStringLiteral("filter"));
    content()->addLayout(makeKinds());
    content()->addLayout(makeSpans());
    content()->addLayout(makeDrives());
    content()->addStretch();
    content()->addLayout(makeEnd());
}

FlatButton *FilterSheet::addToggle(QBoxLayout &row, const QString &text)
{
    auto *button = new FlatButton(text);
    button->setCheckable(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    row.addWidget(button);
    return button;
}

QBoxLayout *FilterSheet::makeKinds()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    for (const KindGroup &group : groups())
        m_kinds.append(addToggle(*row, tr(group.name)));
    return row;
}

QBoxLayout *FilterSheet::makeSpans()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    for (const Span &span : spans)
        m_spans.append(addToggle(*row, tr(span.name)));
    for (FlatButton *button : std::as_const(m_spans)) {
        connect(button, &FlatButton::clicked, this, [this, button] {
            for (FlatButton *other : std::as_const(m_spans))
                other->setChecked(other == button);
        });
    }
    return row;
}

QBoxLayout *FilterSheet::makeDrives()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    auto *before = new FlatButton(tr("Previous"));
    auto *after = new FlatButton(tr("Next"));
    m_drive = new QLabel;
    m_drive->setObjectName(QStringLiteral("drive"));
    m_drive->setAlignment(Qt::AlignCenter);
    m_drive->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_text = new QLineEdit;
    m_text->setMinimumHeight(targetSize);
    m_text->setPlaceholderText(tr("Text in the event"));
    m_text->setAccessibleName(tr("Text in the event"));
    row->addWidget(before);
    row->addWidget(m_drive, 2);
    row->addWidget(after);
    row->addWidget(m_text, 3);
    connect(before, &FlatButton::clicked, this, [this] { turnDrive(-1); });
    connect(after, &FlatButton::clicked, this, [this] { turnDrive(1); });
    return row;
}

QBoxLayout *FilterSheet::makeEnd()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    auto *all = new FlatButton(tr("Show all"));
    auto *cancel = new FlatButton(tr("Cancel"));
    auto *done = new FlatButton(tr("Show these"));
    for (FlatButton *button : { all, cancel, done })
        row->addWidget(button, 1);
    connect(all, &FlatButton::clicked, this, [this] {
        close();
        Q_EMIT entered({});
    });
    connect(cancel, &FlatButton::clicked, this, &Sheet::close);
    const auto enter = [this] {
        close();
        Q_EMIT entered(filter());
    };
    connect(done, &FlatButton::clicked, this, enter);
    connect(m_text, &QLineEdit::returnPressed, this, enter);
    return row;
}

void FilterSheet::turnDrive(int steps)
{
    const int count = host::lengthOf(m_stations);
    m_place = (m_place + steps + count) % count;
    const int station = m_stations.at(m_place);
    m_drive->setText(station == 0 ? tr("All drives") : m_words.drive(station));
}

void FilterSheet::show(const HistoryFilter &filter)
{
    for (int i = 0; i < m_kinds.size(); ++i)
        m_kinds[i]->setChecked(filter.kinds.contains(groups().at(i).kinds.constFirst()));
    for (int i = 0; i < m_spans.size(); ++i)
        m_spans[i]->setChecked(spans[i].length == filter.span);
    m_place = std::max(0, static_cast<int>(m_stations.indexOf(filter.station)));
    turnDrive(0);
    m_text->setText(filter.text);
    QPalette colours = m_text->palette();
    colours.setColor(QPalette::PlaceholderText, lookOf(palette()).faded);
    m_text->setPalette(colours);
}

HistoryFilter FilterSheet::filter() const
{
    HistoryFilter filter;
    for (int i = 0; i < m_kinds.size(); ++i) {
        if (m_kinds.at(i)->isChecked())
            filter.kinds += groups().at(i).kinds;
    }
    for (int i = 0; i < m_spans.size(); ++i) {
        if (m_spans.at(i)->isChecked())
            filter.span = spans[i].length;
    }
    filter.station = m_stations.at(m_place);
    filter.text = m_text->text();
    return filter;
}

void FilterSheet::ask(const HistoryFilter &filter)
{
    show(filter);
    open();
    m_kinds.constFirst()->setFocus();
}

QString FilterSheet::textOf(const HistoryFilter &filter, const AlarmWords &words)
{
    QStringList parts;
    for (const KindGroup &group : groups()) {
        if (filter.kinds.contains(group.kinds.constFirst()))
            parts.append(tr(group.name));
    }
    for (const Span &span : spans) {
        if (filter.span != 0 && span.length == filter.span)
            parts.append(tr(span.name));
    }
    if (filter.station != 0)
        parts.append(words.drive(filter.station));
    if (!filter.text.isEmpty())
        parts.append(tr("\"%1\"").arg(filter.text));
    return parts.join(QStringLiteral(", "));
}

} // namespace dx4::panel
