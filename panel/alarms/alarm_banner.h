// SPDX-License-Identifier: MIT
// The oldest alarm that nobody has acknowledged, on top of every page.
#pragma once

#include "panel/alarms/alarm_words.h"
#include "panel/alarms/list_rows.h"
#include "panel/widgets/flat_button.h"
#include "panel/widgets/page.h"

#include <functional>

namespace dx4::panel {

class AlarmWatch;

/// A button over the whole width: shape, words and ground tell of the alarm, a tap leads to all.
class BannerButton : public FlatButton {
    Q_OBJECT

public:
    explicit BannerButton(QWidget *parent = nullptr);

    /// @param others  unacknowledged ones behind this
    void show(RowMark mark, const QString &heading, const QString &time, int others);
    using FlatButton::show;

    void setScale(double scale);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    RowMark m_mark = RowMark::None;
    QString m_time;
    QString m_more; // "2 more"
    double m_scale = 1.0;
};

/// Takes room only while there is such an alarm.
class AlarmBanner : public Page {
    Q_OBJECT

public:
    /// @param watch  outlives the banner
    AlarmBanner(AlarmWatch &watch, AlarmWords words, std::function<journal::Time()> now,
                QWidget *parent = nullptr);

    /// Has the alarms looked for as well, whatever page is shown.
    void refresh() override;
    void setScale(double scale) override;

Q_SIGNALS:
    void tapped();

private:
    AlarmWatch &m_watch;
    const AlarmWords m_words;
    const std::function<journal::Time()> m_now;
    BannerButton *m_button;
};

} // namespace dx4::panel
