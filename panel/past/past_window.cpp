// SPDX-License-Identifier: MIT
// A window on the time around a fault, which reads as if live.
#include "panel/past/past_window.h"

#include "panel/widgets/look.h"
#include "panel/widgets/value_label.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace dx4::panel {
namespace {

constexpr QSize leastSize(800, 480);
constexpr double highestScale = 2.0;
constexpr int pastSize = 24; // px, as those below at a scale of 1
constexpr int headSize = 18;
constexpr int whenSize = 18;
constexpr int buttonSize = 16;
constexpr int frameWidth = 4; // px, around all of it

struct Step {
    const char *name;
    const char *text;
    journal::Time span; // ms
};

constexpr Step stepsBack[] = {
    { "back 5", QT_TRANSLATE_NOOP("dx4::panel::PastWindow", "-5 s"), -5000 },
    { "back half", QT_TRANSLATE_NOOP("dx4::panel::PastWindow", "-0.5 s"), -500 },
};
constexpr Step stepsOn[] = {
    { "on half", QT_TRANSLATE_NOOP("dx4::panel::PastWindow", "+0.5 s"), 500 },
    { "on 5", QT_TRANSLATE_NOOP("dx4::panel::PastWindow", "+5 s"), 5000 },
};

host::Config configOf(const PastRecord &record)
{
    host::Config config;
    for (auto drive = record.drives.begin(); drive != record.drives.end(); ++drive) {
        host::StationConfig station;
        station.address = drive.key();
        station.name = drive.value();
        config.stations.append(station);
    }
    config.states = record.states;
    config.faults = record.faults;
    return config;
}

/// A line that only shows.
LinePort portOf(const std::shared_ptr<const host::LineSnapshot> &snapshot)
{
    return { [&snapshot] { return snapshot; }, [](const host::WriteWish &) { return 0; },
             [](host::Duration) { return 0; } };
}

QString inSeconds(journal::Time span)
{
    return QLocale().toString(static_cast<double>(span) / 1000.0, 'f', 1);
}

QVector<TextRow> frameRows(const PastRecord &record)
{
    QVector<TextRow> rows;
    const QVector<PastFrame> frames = record.frames.value_or(QVector<PastFrame>());
    for (const PastFrame &frame : frames)
        rows.append({ QString::fromLatin1(frame.bytes.toHex(' ')),
                      frame.isRequest ? PastWindow::tr("request") : PastWindow::tr("reply"),
                      PastWindow::distanceText(frame.time - record.faultAt) });
    return rows;
}

QVector<TextRow> parameterRows(const PastRecord &record, const AlarmWords &words)
{
    QVector<TextRow> rows;
    const auto events = record.parameters.value_or(QVector<journal::Event>());
    for (const journal::Event &event : events)
        rows.append({ event.text, words.drive(event.station), dateText(event.time) });
    return rows;
}

} // namespace

PastWindow::PastWindow(const PastRecord &record, QWidget *parent)
    : QWidget(parent)
    , m_record(record)
    , m_words(configOf(record))
    , m_snapshot(std::make_shared<host::LineSnapshot>())
    , m_line(portOf(m_snapshot), configOf(record), wordsOf(configOf(record)),
             { [] { return host::Duration(0); },
               [this] { return QDateTime::fromMSecsSinceEpoch(m_at, Qt::UTC); } })
    , m_frames(frameRows(record))
    , m_parameters(parameterRows(record, m_words))
    , m_at(record.faultAt)
    , m_pages(new QStackedWidget)
{
    setMinimumSize(leastSize);
    setWindowTitle(tr("Past: %1").arg(headText()));
    for (TextRows *rows : { &m_frames, &m_parameters })
        m_lists.append(new RowList(*rows));
    m_lists[0]->setEmptyText(tr("The frames of this time were not kept."));
    m_lists[1]->setEmptyText(m_record.parameters
                                 ? tr("No parameter was written since the panel was started.")
                                 : tr("No journal told which parameters were written."));
    m_pages->addWidget(makeDrives());
    for (RowList *list : std::as_const(m_lists))
        m_pages->addWidget(list);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(targetGap, targetGap, targetGap, targetGap);
    column->setSpacing(targetGap);
    column->addWidget(makeHead());
    column->addWidget(m_pages, 1);
    column->addWidget(makeSteps());
    column->addWidget(makeTabs());
    for (int i = 0; i < m_line.driveCount(); ++i) {
        if (m_line.drive(i).station == record.station)
            m_chosen = i;
    }
    openTab(0);
    setScale(1.0);
    showMoment(record.faultAt);
    choose(m_chosen);
    m_atFault->setFocus();
}

QString PastWindow::headText() const
{
    const QString fault = m_record.faults.value(m_record.code, tr("fault %1").arg(m_record.code));
    return tr("%1: %2, %3").arg(m_words.drive(m_record.station), fault, dateText(m_record.faultAt));
}

QWidget *PastWindow::makeHead()
{
    auto *head = new QWidget;
    auto *row = new QHBoxLayout(head);
    row->setContentsMargins(targetGap, 0, targetGap, 0);
    row->setSpacing(2 * targetGap);
    m_past = new QLabel(tr("PAST"));
    m_past->setObjectName(QStringLiteral("past"));
    m_head = new QLabel(headText());
    m_head->setObjectName(QStringLiteral("head"));
    m_head->setTextFormat(Qt::PlainText);
    m_head->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    row->addWidget(m_past);
    row->addWidget(m_head, 1);
    head->setFixedHeight(targetSize);
    head->setAutoFillBackground(true);
    const Look look = lookOf(palette());
    QPalette palette = head->palette();
    palette.setColor(QPalette::Window, look.accent);
    palette.setColor(QPalette::WindowText, look.accentText);
    head->setPalette(palette);
    return head;
}

QWidget *PastWindow::makeDrives()
{
    auto *page = new QWidget;
    auto *row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2 * targetGap);
    m_list = new DriveList(m_line);
    m_view = new DriveView([] { return host::Duration(0); });
    m_view->setReadOnly();
    row->addWidget(m_list, 0);
    row->addWidget(m_view, 1);
    connect(m_list, &DriveList::chosen, this, &PastWindow::choose);
    return page;
}

FlatButton *PastWindow::addButton(QWidget &row, const char *name, const QString &text)
{
    auto *button = new FlatButton(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    row.layout()->addWidget(button);
    m_buttons.append(button);
    return button;
}

QWidget *PastWindow::makeSteps()
{
    auto *steps = new QWidget;
    auto *row = new QHBoxLayout(steps);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(targetGap);
    const auto add = [&](const Step &step) {
        auto *button = addButton(*steps, step.name, tr(step.text));
        connect(button, &FlatButton::clicked, this,
                [this, span = step.span] { showMoment(m_at + span); });
    };
    for (const Step &step : stepsBack)
        add(step);
    m_when = new QLabel;
    m_when->setObjectName(QStringLiteral("when"));
    m_when->setAlignment(Qt::AlignCenter);
    m_when->setWordWrap(true);
    row->addWidget(m_when, 1);
    for (const Step &step : stepsOn)
        add(step);
    m_atFault = addButton(*steps, "at fault", tr("At the fault"));
    connect(m_atFault, &FlatButton::clicked, this, [this] { showMoment(m_record.faultAt); });
    return steps;
}

QWidget *PastWindow::makeTabs()
{
    auto *tabs = new QWidget;
    auto *row = new QHBoxLayout(tabs);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(targetGap);
    m_tabs = { addButton(*tabs, "drives", tr("Drives")), addButton(*tabs, "frames", tr("Frames")),
               addButton(*tabs, "parameters", tr("Parameters written")) };
    for (int i = 0; i < m_tabs.size(); ++i) {
        m_tabs[i]->setCheckable(true);
        m_tabs[i]->setAutoExclusive(true);
        connect(m_tabs[i], &FlatButton::clicked, this, [this, i] { openTab(i); });
    }
    return tabs;
}

void PastWindow::openTab(int index)
{
    m_pages->setCurrentIndex(index);
    m_tabs[index]->setChecked(true);
}

QString PastWindow::distanceText(journal::Time fromFault)
{
    if (fromFault == 0)
        return tr("at the fault");
    return fromFault < 0 ? tr("%1 s before the fault").arg(inSeconds(-fromFault))
                         : tr("%1 s after the fault").arg(inSeconds(fromFault));
}

void PastWindow::showMoment(journal::Time at)
{
    m_at = std::clamp(at, m_record.from, std::max(m_record.from, m_record.to));
    m_snapshot = std::make_shared<host::LineSnapshot>(snapshotAt(m_record, m_at));
    m_line.look();
    refresh();
}

void PastWindow::choose(int index)
{
    m_chosen = index;
    m_list->choose(index);
    refresh();
}

void PastWindow::refresh()
{
    if (m_line.driveCount() == 0)
        return;
    m_list->refresh();
    m_view->show(m_line.drive(m_chosen));
    const QString time = dateText(m_at).mid(11);
    const QString down = m_line.message();
    m_when->setText(down.isEmpty()
                        ? tr("%1, %2").arg(time, distanceText(m_at - m_record.faultAt))
                        : tr("%1, %2. %3").arg(time, distanceText(m_at - m_record.faultAt), down));
    for (FlatButton *button : std::as_const(m_buttons)) {
        const bool isBack = button->objectName().startsWith(QStringLiteral("back"));
        const bool isOn = button->objectName().startsWith(QStringLiteral("on"));
        if (isBack || isOn)
            button->setEnabled(isBack ? m_at > m_record.from : m_at < m_record.to);
    }
}

void PastWindow::setScale(double scale)
{
    const auto at = [scale](int size) { return static_cast<int>(size * scale); };
    m_past->setFont(sized(font(), at(pastSize), true));
    m_head->setFont(sized(font(), at(headSize), true));
    m_when->setFont(sized(font(), at(whenSize), true));
    m_past->parentWidget()->setFixedHeight(at(targetSize));
    m_list->setRoom(size() - QSize(0, 3 * at(targetSize)), scale);
    m_view->setScale(scale);
    for (RowList *list : std::as_const(m_lists))
        list->setScale(scale);
    for (FlatButton *button : std::as_const(m_buttons)) {
        button->setFont(sized(font(), at(buttonSize)));
        button->setMinimumHeight(at(targetSize));
    }
    refresh();
}

void PastWindow::resizeEvent(QResizeEvent *)
{
    const double across = static_cast<double>(width()) / leastSize.width();
    const double down = static_cast<double>(height()) / leastSize.height();
    setScale(std::clamp(std::min(across, down), 1.0, highestScale));
    choose(m_chosen);
}

void PastWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(QPen(lookOf(palette()).accent, frameWidth));
    const int half = frameWidth / 2;
    painter.drawRect(rect().adjusted(half, half, -half, -half));
}

} // namespace dx4::panel
