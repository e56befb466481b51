// SPDX-License-Identifier: MIT
// The page of the trend.
#pragma once

#include "panel/trend/time_window.h"
#include "panel/trend/trend_store.h"
#include "panel/trendview/trace_chip.h"
#include "panel/trendview/trace_view.h"
#include "panel/widgets/page.h"

class QBoxLayout;
class QGridLayout;

namespace dx4::panel {

class TraceSaveSheet;
class TraceSheet;
class TriggerSheet;

/// Up to eight traces with a scale each and lanes for status bits over ten seconds to a day. What
/// it shows can stand still; what is recorded does not depend on it.
class TrendPage : public Page {
    Q_OBJECT

public:
    /// @param store  outlives the page
    /// @param now    the steady clock
    TrendPage(TrendStore &store, const std::function<host::Duration()> &now,
              QWidget *parent = nullptr);

    void refresh() override;
    void setScale(double scale) override;

    /// Shows these registers and bits.
    void choose(const QVector<TraceChoice> &choices);
    const QVector<TraceChoice> &choices() const { return m_choices; }

    /// The span that is looked at, in ms.
    void setSpan(Moment span);
    const TimeWindow &timeWindow() const { return m_window; }

    /// Stands still, or follows the time again.
    void setPaused(bool isPaused);

    /// Shows the cursors, at the thirds of what is seen then; it stands still for them.
    void setMeasuring(bool isMeasuring);

    /// Pictures that were drawn; one that would say the same is not.
    int drawn() const { return m_drawnCount; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    /// That have a button, ms.
    static constexpr std::array<Moment, 6> spans = { 10'000,    60'000,     600'000,
                                                     3'600'000, 28'800'000, 86'400'000 };

    QWidget *makePlot();
    QLayout *makeSpans();
    QLayout *makeActions();
    void connectView();
    void chooseFirst();
    void arrangeChips();
    TraceReading readingOf(const TraceChoice &choice, std::size_t level, Moment from, Moment to);
    TraceScene makeScene();
    QStringList notesOf() const;
    QString stateNote() const;
    bool isOfOneDrive() const;
    std::vector<qint64> signatureOf(const TraceScene &scene) const;
    void showChips(const TraceScene &scene);
    TraceChip::Content contentOf(const TraceReading &trace, const TraceScene &scene) const;
    void showButtons();
    void takeTrigger(Moment at, const QString &what);
    void select(int trace);
    void save();

    TrendStore &m_store;
    TimeWindow m_window;
    QVector<TraceChoice> m_choices;
    int m_selected = 0;
    std::array<std::optional<Moment>, 2> m_cursors;
    QString m_triggered; // what the view stands still for; empty: nothing
    double m_scale = 1.0;
    std::vector<qint64> m_drawn;
    int m_drawnCount = 0;

    QWidget *m_picture = nullptr; // chips and plot
    QGridLayout *m_chipPlace = nullptr;
    QVector<TraceChip *> m_chips;
    TraceView *m_view;
    QVector<FlatButton *> m_spans;
    QVector<FlatButton *> m_actions;
    FlatButton *m_pause = nullptr;
    FlatButton *m_measure = nullptr;
    FlatButton *m_wait = nullptr;
    TraceSheet *m_traceSheet;
    TriggerSheet *m_triggerSheet;
    TraceSaveSheet *m_saveSheet;
};

} // namespace dx4::panel
