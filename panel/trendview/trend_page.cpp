// SPDX-License-Identifier: MIT
// The page of the trend: what stands where, and what buttons do.
#include "panel/trendview/trend_page.h"

#include "panel/trend/trend_csv.h"
#include "panel/trendview/trace_colours.h"
#include "panel/trendview/trace_save_sheet.h"
#include "panel/trendview/trace_sheet.h"
#include "panel/trendview/trigger_sheet.h"
#include "panel/widgets/value_label.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QImage>
#include <QVBoxLayout>

#include <algorithm>

namespace dx4::panel {
namespace {

constexpr int actionWidth = 112; // px, as the next at a scale of 1
constexpr int buttonText = 16; // px

} // namespace

TrendPage::TrendPage(TrendStore &store, const std::function<host::Duration()> &now, QWidget *parent)
    : Page(parent)
    , m_store(store)
    , m_view(new TraceView)
    , m_traceSheet(nullptr)
    , m_triggerSheet(nullptr)
    , m_saveSheet(nullptr)
{
    setObjectName(QStringLiteral("trend"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(targetGap, targetGap, targetGap, 0);
    row->setSpacing(targetGap);
    auto *column = new QVBoxLayout;
    column->setSpacing(targetGap);
    column->addWidget(makePlot(), 1);
    column->addLayout(makeSpans());
    row->addLayout(column, 1);
    row->addLayout(makeActions());
    m_traceSheet = new TraceSheet(store, this);
    m_triggerSheet = new TriggerSheet(store, now, this);
    m_saveSheet = new TraceSaveSheet(this);
    connect(m_traceSheet, &TraceSheet::chosen, this, &TrendPage::choose);
    connect(&store, &TrendStore::fired, this, &TrendPage::takeTrigger);
    connectView();
}

QWidget *TrendPage::makePlot()
{
    m_picture = new QWidget;
    auto *column = new QVBoxLayout(m_picture);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(targetGap);
    m_chipPlace = new QGridLayout;
    m_chipPlace->setSpacing(targetGap);
    for (int trace = 0; trace < mostTraces; ++trace) {
        auto *chip = new TraceChip(trace);
        chip->setVisible(false);
        connect(chip, &TraceChip::clicked, this, [this, trace] { select(trace); });
        m_chips.append(chip);
    }
    column->addLayout(m_chipPlace);
    column->addWidget(m_view, 1);
    return m_picture;
}

QLayout *TrendPage::makeSpans()
{
    const QStringList names { tr("10 s"), tr("1 min"), tr("10 min"),
                              tr("1 h"),  tr("8 h"),   tr("24 h") };
    auto *row = new QHBoxLayout;
    row->setSpacing(targetGap);
    for (std::size_t i = 0; i < spans.size(); ++i) {
        auto *button = new FlatButton(names.at(static_cast<int>(i)));
        button->setCheckable(true);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        connect(button, &FlatButton::clicked, this, [this, i] { setSpan(spans.at(i)); });
        row->addWidget(button);
        m_spans.append(button);
    }
    return row;
}

QLayout *TrendPage::makeActions()
{
    auto *column = new QVBoxLayout;
    column->setSpacing(targetGap);
    const auto add = [&](const QString &text, const auto &act) {
        auto *button = new FlatButton(text);
        button->setFixedWidth(actionWidth);
        connect(button, &FlatButton::clicked, this, act);
        column->addWidget(button);
        m_actions.append(button);
        return button;
    };
    m_pause = add(tr("Pause"), [this] { setPaused(m_window.isLive()); });
    m_pause->setCheckable(true);
    m_measure = add(tr("Cursors"), [this] { setMeasuring(!m_cursors.front()); });
    m_measure->setCheckable(true);
    m_wait =
        add(tr("Trigger..."), [this] { m_triggerSheet->ask(m_choices.value(m_selected, {})); });
    m_wait->setCheckable(true);
    add(tr("Traces..."), [this] { m_traceSheet->ask(m_choices); });
    add(tr("Save..."), [this] { save(); });
    column->addStretch();
    return column;
}

void TrendPage::connectView()
{
    connect(m_view, &TraceView::panned, this, [this](Moment by) {
        m_window.pan(by, m_store.now());
        refresh();
    });
    connect(m_view, &TraceView::zoomed, this, [this](double factor, Moment around) {
        m_window.zoom(factor, around, m_store.now());
        refresh();
    });
    connect(m_view, &TraceView::cursorMoved, this, [this](int which, Moment at) {
        m_cursors.at(static_cast<std::size_t>(which)) = at;
        refresh();
    });
    connect(m_view, &TraceView::liveWanted, this, [this] { setPaused(false); });
    connect(m_view, &TraceView::pauseWanted, this, [this] { setPaused(m_window.isLive()); });
    connect(m_view, &TraceView::traceWanted, this, [this](int by) { select(m_selected + by); });
}

void TrendPage::setSpan(Moment span)
{
    m_window.setSpan(span, m_store.now());
    refresh();
}

void TrendPage::setPaused(bool isPaused)
{
    m_triggered.clear();
    if (isPaused)
        m_window.pause(m_store.now());
    else
        m_window.follow();
    if (!isPaused)
        m_cursors = {};
    refresh();
}

void TrendPage::setMeasuring(bool isMeasuring)
{
    m_cursors = {};
    if (isMeasuring) {
        const Moment now = m_store.now();
        if (m_window.isLive())
            m_window.pause(now);
        m_cursors = { m_window.from(now) + m_window.span() / 3,
                      m_window.from(now) + m_window.span() * 2 / 3 };
        m_view->setFocus();
    }
    refresh();
}

void TrendPage::takeTrigger(Moment at, const QString &what)
{
    m_triggered = what;
    m_window.centre(at);
    refresh();
}

void TrendPage::select(int trace)
{
    int traces = 0;
    for (const TraceChoice &choice : std::as_const(m_choices))
        traces += choice.bit < 0 ? 1 : 0;
    m_selected = std::clamp(trace, 0, std::max(0, traces - 1));
    refresh();
}

/// Traces stand before lanes.
void TrendPage::choose(const QVector<TraceChoice> &choices)
{
    m_choices = choices;
    std::stable_sort(
        m_choices.begin(), m_choices.end(),
        [](const TraceChoice &a, const TraceChoice &b) { return (a.bit < 0) && (b.bit >= 0); });
    select(m_selected);
}

void TrendPage::save()
{
    const TraceScene scene = makeScene();
    const QVector<TraceReading> traces = scene.traces + scene.lanes;
    const QImage picture = m_picture->grab().toImage();
    TraceSaveSheet::Writers writers;
    writers.csv = [traces, shift = scene.shift](QIODevice &to, QString *error) {
        return writeTrendCsv(traces, shift, to, error);
    };
    writers.png = [picture](QIODevice &to, QString *) { return picture.save(&to, "PNG"); };
    m_saveSheet->ask(writers, scene.to + scene.shift);
}

void TrendPage::setScale(double scale)
{
    m_scale = scale;
    m_view->setScale(scale);
    for (TraceChip *chip : std::as_const(m_chips))
        chip->setScale(scale);
    for (FlatButton *button : m_spans + m_actions) {
        button->setFont(sized(font(), static_cast<int>(buttonText * scale)));
        button->setMinimumHeight(static_cast<int>(targetSize * scale));
    }
    for (FlatButton *button : std::as_const(m_actions))
        button->setFixedWidth(static_cast<int>(actionWidth * scale));
    m_drawn.clear();
    arrangeChips();
}

void TrendPage::resizeEvent(QResizeEvent *)
{
    m_drawn.clear();
    arrangeChips();
}

/// In as few rows as there is room for, all of one width.
void TrendPage::arrangeChips()
{
    const int least = static_cast<int>(TraceChip::leastWidth * m_scale) + targetGap;
    const int actions = static_cast<int>(actionWidth * m_scale);
    const int room = (width() - actions - 2 * targetGap) / least;
    const int columns = std::clamp(room, 1, mostTraces);
    for (int i = 0; i < m_chips.size(); ++i)
        m_chipPlace->addWidget(m_chips.at(i), i / columns, i % columns);
    for (int column = 0; column < mostTraces; ++column)
        m_chipPlace->setColumnStretch(column, column < columns ? 1 : 0);
}

} // namespace dx4::panel
