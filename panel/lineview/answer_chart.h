// SPDX-License-Identifier: MIT
// How long stations take to answer, as bars.
#pragma once

#include "host/exchange/counters.h"

#include <QLocale>
#include <QWidget>

namespace dx4::panel {

/// A bar for each class of turnaround, with its count above and its bound below.
class AnswerChart : public QWidget {
    Q_OBJECT

public:
    explicit AnswerChart(QWidget *parent = nullptr);

    void setCounts(const host::RequestCounts &counts);

    /// @param size  of the text, px
    void setTextSize(int size);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const QLocale m_locale;
    decltype(host::RequestCounts::turnaround) m_counts = {};
};

/// "Half within 10 ms, 99 % within 20 ms, slowest within 50 ms"; says so where nothing was
/// answered. The classes are as coarse as the bars.
QString answerSummary(const host::RequestCounts &counts, const QString &station);

} // namespace dx4::panel
