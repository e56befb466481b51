// SPDX-License-Identifier: MIT
// What the page of the line shows, without widgets.
#pragma once

#include "host/service/line_service.h"
#include "panel/lineview/counts_model.h"
#include "panel/lineview/frame_recorder.h"
#include "panel/lineview/line_verdict.h"
#include "panel/model/clock.h"

#include <QObject>
#include <QTimer>

namespace dx4::panel {

/// What the page needs of a line; a service gives it, or a test.
struct LineViewPort {
    std::function<std::shared_ptr<const host::LineSnapshot>()> snapshot;
    std::function<void()> takeCounters; ///< answered by LineView::noteCounters()
    std::shared_ptr<const host::FrameTap> tap; ///< of its frames; not null
};

/// The port of a service, which outlives it.
LineViewPort viewPortOf(host::LineService &service, std::shared_ptr<const host::FrameTap> tap);

/// Asks for counters once a second, takes frames, and makes both into what is drawn. On the thread
/// of the window but for the recorder, and nothing here waits.
class LineView : public QObject {
    Q_OBJECT

public:
    static constexpr host::Duration askEvery = std::chrono::seconds(1);
    /// Counts that were taken so long ago are shown as old.
    static constexpr host::Duration oldFrom = std::chrono::seconds(5);

    LineView(LineViewPort port, const host::Config &config, Clock clock, QObject *parent = nullptr);

    /// Listens to the counters of a service.
    void follow(const host::LineService &service);

    /// Looks once a second by itself, so that the last minute is one also while another page is
    /// open.
    void start();

    /// Lets time pass and takes what is new; to be called some times a second while it is shown.
    void look();

    void noteCounters(const dx4::host::LineCounters &counters);

    /// Takes over the names of a configuration with the same stations.
    void takeConfig(const host::Config &config);

    /// Which counts are shown, and how finely.
    void showRecent(bool isRecent);
    void showBlocks(bool areShown);
    bool isRecent() const { return m_isRecent; }
    bool areBlocksShown() const { return m_areBlocksShown; }

    /// Which frames are shown; `station` is that of the histogram as well.
    void setFilter(const FrameFilter &filter);
    const FrameFilter &filter() const { return m_filter; }

    /// Frames stand still while they are read; they are taken all the same.
    void setPaused(bool isPaused);
    bool isPaused() const { return m_isPaused; }

    CountsModel &counts() { return m_counts; }
    FrameModel &frames() { return m_frames; }
    FrameRecorder &recorder() { return m_recorder; }

    /// Counts of the station of the filter, of all by default; in the span that is shown.
    host::RequestCounts chosenCounts() const;

    /// One sentence on the last minute.
    LineVerdict verdict() const;

    /// "Line held 87 % of the time, broke 2 times (last 60 s)".
    QString loadText() const;

    /// What the recorder does, in one line; empty where nothing was recorded.
    QString recordText() const;

    /// Stations of the configuration and those that were asked besides, ascending.
    QVector<int> stations() const;

    /// "3 Conveyor".
    QString stationName(int station) const;

private:
    const SpanCounts &shown() const { return m_isRecent ? m_window.recent() : m_window.whole(); }
    bool isOld() const;
    QString nameOf(int station) const;
    void showCounts();
    void showFrames();

    const LineViewPort m_port;
    host::Config m_config;
    const Clock m_clock;
    const QLocale m_locale;
    CountsWindow m_window;
    CountsModel m_counts;
    FrameLog m_log;
    FrameModel m_frames;
    FrameRecorder m_recorder;
    FrameFilter m_filter;
    QTimer m_timer;
    quint64 m_nextFrame = 0;
    std::optional<host::Duration> m_askedAt;
    std::optional<host::Duration> m_countedAt;
    bool m_isRecent = true;
    bool m_areBlocksShown = false;
    bool m_isPaused = false;
};

} // namespace dx4::panel
