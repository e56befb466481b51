// SPDX-License-Identifier: MIT
// What the page of the line shows, without widgets.
#include "panel/lineview/line_view.h"

#include "host/base/length.h"

#include <set>
#include <utility>

namespace dx4::panel {
namespace {

QString percent(double share, const QLocale &locale)
{
    return QStringLiteral("%1 %").arg(locale.toString(share * 100.0, 'f', 0));
}

} // namespace

LineViewPort viewPortOf(host::LineService &service, std::shared_ptr<const host::FrameTap> tap)
{
    return { [&service] { return service.snapshot(); }, [&service] { service.takeCounters(); },
             std::move(tap) };
}

LineView::LineView(LineViewPort port, const host::Config &config, Clock clock, QObject *parent)
    : QObject(parent)
    , m_port(std::move(port))
    , m_config(config)
    , m_clock(std::move(clock))
    , m_log(config.line)
    , m_recorder(m_port.tap)
{
    connect(&m_timer, &QTimer::timeout, this, &LineView::look);
    showCounts();
}

void LineView::start()
{
    m_timer.start(std::chrono::duration_cast<std::chrono::milliseconds>(askEvery));
}

void LineView::follow(const host::LineService &service)
{
    connect(&service, &host::LineService::countersTaken, this,
            [this](int, const host::LineCounters &counters) { noteCounters(counters); });
}

void LineView::look()
{
    const host::Duration now = m_clock.steady();
    if (!m_askedAt || now - *m_askedAt >= askEvery) {
        m_askedAt = now;
        m_port.takeCounters();
    }
    m_counts.setOld(isOld());
    const host::TappedFrames taken = m_port.tap->since(m_nextFrame);
    if (taken.next == m_nextFrame)
        return;
    m_nextFrame = taken.next;
    m_log.take(taken);
    showFrames();
}

void LineView::noteCounters(const host::LineCounters &counters)
{
    if (counters.span <= host::Duration(0))
        return; // the line is down for good, or was not opened yet
    m_countedAt = m_clock.steady();
    m_window.note(counters);
    m_counts.setOld(false);
    showCounts();
}

void LineView::takeConfig(const host::Config &config)
{
    m_config = config;
    showCounts();
}

bool LineView::isOld() const
{
    return !m_countedAt || m_clock.steady() - *m_countedAt >= oldFrom;
}

void LineView::showRecent(bool isRecent)
{
    m_isRecent = isRecent;
    showCounts();
}

void LineView::showBlocks(bool areShown)
{
    m_areBlocksShown = areShown;
    showCounts();
}

void LineView::setFilter(const FrameFilter &filter)
{
    m_filter = filter;
    // What is asked for anew is shown, also while the frames stand still.
    m_frames.setLines(m_log.lines(m_filter));
}

void LineView::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    showFrames();
}

void LineView::showFrames()
{
    if (!m_isPaused)
        m_frames.setLines(m_log.lines(m_filter));
}

QVector<int> LineView::stations() const
{
    std::set<int> all;
    for (const host::StationConfig &station : m_config.stations)
        all.insert(station.address);
    for (const auto &[key, counts] : m_window.whole().blocks) {
        if (key.station > 0)
            all.insert(key.station);
    }
    QVector<int> stations;
    for (int station : all)
        stations.append(station);
    return stations;
}

QString LineView::nameOf(int station) const
{
    for (const host::StationConfig &known : m_config.stations) {
        if (known.address == station)
            return known.name;
    }
    return {};
}

QString LineView::stationName(int station) const
{
    return QStringLiteral("%1 %2").arg(station).arg(nameOf(station)).trimmed();
}

void LineView::showCounts()
{
    const SpanCounts &span = shown();
    QVector<CountsRow> rows { { tr("All"), false, span.total() } };
    for (int station : stations()) {
        rows.append({ stationName(station), false, span.station(station) });
        for (const auto &[key, counts] : span.blocks) {
            if (m_areBlocksShown && key.station == station)
                rows.append({ blockName(key), true, counts });
        }
    }
    m_counts.setRows(rows);
}

host::RequestCounts LineView::chosenCounts() const
{
    return m_filter.station == 0 ? shown().total() : shown().station(m_filter.station);
}

LineVerdict LineView::verdict() const
{
    LineFacts facts;
    const auto snapshot = m_port.snapshot();
    facts.isOpen = snapshot->isOpen;
    facts.downReason = snapshot->downReason;
    for (int station : stations())
        facts.stations.append({ station, nameOf(station), m_window.recent().station(station) });
    if (facts.isOpen && m_countedAt && isOld())
        return { tr("Nothing was heard of the line for %1 s")
                     .arg((m_clock.steady() - *m_countedAt) / std::chrono::seconds(1)),
                 true };
    return verdictOf(facts, m_locale);
}

QString LineView::loadText() const
{
    if (!m_countedAt)
        return {};
    const SpanCounts &span = shown();
    const QString held = tr("Line held %1 of the time").arg(percent(span.load(), m_locale));
    const auto seconds = span.span / std::chrono::seconds(1);
    const QString since = m_isRecent ? tr("last %1 s").arg(seconds) : tr("since the start");
    const QString broke =
        span.lineDowns > 0 ? tr(", broke %1 times").arg(span.lineDowns) : QString();
    return QStringLiteral("%1%2 (%3)").arg(held, broke, since);
}

QString LineView::recordText() const
{
    const FrameRecorder::State state = m_recorder.state();
    const QString frames = m_locale.toString(state.frames);
    switch (state.stage) {
    case FrameRecorder::Stage::Idle:
    case FrameRecorder::Stage::Exists:
        return {};
    case FrameRecorder::Stage::Recording:
        return state.missed == 0 ? tr("Recording: %1 frames in %2").arg(frames, state.file)
                                 : tr("Recording: %1 frames in %2; the disk was too slow for %3")
                                       .arg(frames, state.file, m_locale.toString(state.missed));
    case FrameRecorder::Stage::Ending:
        return tr("The last frames go to %1").arg(state.file);
    case FrameRecorder::Stage::Ended:
        return tr("Recorded: %1 frames in %2").arg(frames, state.file);
    case FrameRecorder::Stage::Failed:
        return tr("Recording failed after %1 frames: %2").arg(frames, state.error);
    }
    return {};
}

} // namespace dx4::panel
