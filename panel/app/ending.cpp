// SPDX-License-Identifier: MIT
// The panel's end by a signal.
#include "panel/app/ending.h"

#include <QSocketNotifier>

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

constexpr int lookInterval = 100; // ms, where nothing wakes the loop
constexpr int tellsOfPatience = 4;

} // namespace

Ending::Ending(PanelLine &line, const host::StopSignal &signal, QObject *parent)
    : QObject(parent)
    , m_line(line)
    , m_signal(signal)
{
    connect(&line, &PanelLine::stopped, this, &Ending::takeEnd);
    connect(&m_timer, &QTimer::timeout, this, &Ending::look);
    if (signal.descriptor() < 0) {
        m_timer.start(lookInterval);
        return;
    }
    auto *notifier = new QSocketNotifier(signal.descriptor(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        look();
    });
}

void Ending::look()
{
    if (m_isStopping || !m_signal.hasCome())
        return;
    m_isStopping = true;
    m_line.stopAll();
}

/// A stop by hand that was under way shares its end with ours.
void Ending::takeEnd(const QVector<int> &unconfirmed)
{
    if (std::exchange(m_isStopping, false))
        Q_EMIT ended(unconfirmed);
}

void tellOfUser(host::LineService &service, host::Duration patience, QObject *parent)
{
    if (patience <= host::Duration(0))
        return;
    auto *timer = new QTimer(parent);
    QObject::connect(timer, &QTimer::timeout, &service, [&service] { service.noteUser(); });
    const auto all = std::chrono::duration_cast<std::chrono::milliseconds>(patience).count();
    timer->start(static_cast<int>(all / tellsOfPatience));
}

} // namespace dx4::panel
