// SPDX-License-Identifier: MIT
// The panel's end by a signal.
#pragma once

#include "host/writes/stop_signal.h"
#include "panel/model/panel_line.h"

#include <QTimer>

class QSocketNotifier;

namespace dx4::panel {

/// SIGINT, SIGTERM and SIGHUP end the panel as they end the tool: the drives are stopped, their
/// echoes awaited, nothing is asked.
class Ending : public QObject {
    Q_OBJECT

public:
    /// @param line    outlives this
    /// @param signal  made before other threads were; outlives this
    Ending(PanelLine &line, const host::StopSignal &signal, QObject *parent = nullptr);

    /// Looks whether a signal has come; it does so by itself.
    void look();

Q_SIGNALS:
    /// The program may end.
    ///
    /// @param unconfirmed  stations that may still run
    void ended(const QVector<int> &unconfirmed);

private:
    void takeEnd(const QVector<int> &unconfirmed);

    PanelLine &m_line;
    const host::StopSignal &m_signal;
    QTimer m_timer; // where there is no descriptor
    bool m_isStopping = false;
};

/// Tells a service some times a second that its user is there, on the thread that makes this: a
/// window that hangs tells nothing.
///
/// @param patience  of the service; 0: there is nothing to tell
void tellOfUser(host::LineService &service, host::Duration patience, QObject *parent);

} // namespace dx4::panel
