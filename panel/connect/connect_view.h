// SPDX-License-Identifier: MIT
// What the page of ports, plan and configuration shows, without widgets.
#pragma once

#include "host/line/port_list.h"
#include "host/service/line_service.h"
#include "panel/connect/async_work.h"
#include "panel/connect/checked_config.h"
#include "panel/connect/text_table.h"
#include "panel/model/clock.h"

#include <QLocale>
#include <QObject>

namespace dx4::panel {

/// What the page needs of the machine and of a line; the panel gives it, or a test. The first three
/// are called on other threads.
struct ConnectPort {
    std::function<QVector<host::PortInfo>(const QString &)> listPorts; ///< see portsWith()
    std::function<CheckedConfig(const QString &)> check;
    std::function<QStringList(const QString &)> listFiles; ///< configurations of a folder
    std::function<void(const host::Config &, const host::Plan &)>
        reload; ///< ends by noteReloaded()
};

/// Looks at ports every few seconds, and at a file when it is asked to. The configuration that runs
/// stays until another one is whole and somebody wants it.
class ConnectView : public QObject {
    Q_OBJECT

public:
    static constexpr host::Duration lookEvery = std::chrono::seconds(3);
    /// Of a station that answers at once, as `dx4 plan` counts it.
    static constexpr host::Duration turnaround = std::chrono::milliseconds(5);

    /// From the wish to take a file over to its end: a stop under way goes first.
    static constexpr host::Duration takenWithin = std::chrono::seconds(10);

    enum class Stage {
        Running, ///< no other file was opened
        Checking,
        Wrong, ///< the file that was opened has errors
        Whole, ///< it can be taken over, or says why it cannot; see newStart()
        Taking, ///< the line is about to take it over
        NotTaken, ///< the line did not take it within `takenWithin`; it may be down for good
        Taken, ///< it runs
    };

    /// @param running  what the line was begun with
    ConnectView(ConnectPort port, const CheckedConfig &running, Clock clock,
                QObject *parent = nullptr);

    /// Listens to a service whether a configuration was taken over.
    void follow(const host::LineService &service);

    /// Takes what is there; to be called some times a second while the page is shown.
    void look();

    /// Waits for what is under way, and takes it.
    void finish();

    /// Checks a file.
    void open(const QString &file);

    /// Has the line take the whole file over that was opened.
    void takeOver();
    bool canTakeOver() const { return m_stage == Stage::Whole && newStart().isEmpty(); }

    void noteReloaded(const QStringList &needRestart);

    Stage stage() const { return m_stage; }
    const CheckedConfig &running() const { return m_running; }
    const CheckedConfig &opened() const { return m_opened; }

    /// Why the file that was opened needs a new start of the panel; empty: it does not.
    QString newStart() const;

    /// One sentence on the files.
    QString stateText() const;
    bool isStateBad() const { return m_stage == Stage::Wrong || m_stage == Stage::NotTaken; }

    /// Errors at their lines, or what a whole file has.
    QString detailText() const;

    /// "30 registers in 9 blocks; one round takes 240.1 ms".
    QString planText() const;

    TextTable &ports() { return m_ports; }
    TextTable &plan() { return m_planTable; }
    bool arePortsKnown() const { return m_arePortsKnown; }

    /// Configurations beside the one that runs.
    const QStringList &files() const { return m_files; }

Q_SIGNALS:
    /// The line has taken this over.
    void taken(const dx4::host::Config &config);

private:
    void showPorts(const QVector<host::PortInfo> &ports);
    void showPlan();
    void takeChecked(const CheckedConfig &checked);
    QString summaryOf(const CheckedConfig &checked) const;

    const ConnectPort m_port;
    const Clock m_clock;
    const QLocale m_locale;
    CheckedConfig m_running;
    CheckedConfig m_opened;
    QStringList m_needRestart; // of what was taken over
    Stage m_stage = Stage::Running;
    TextTable m_ports;
    TextTable m_planTable;
    QStringList m_files;
    bool m_arePortsKnown = false;
    std::optional<host::Duration> m_lookedAt;
    host::Duration m_wantedAt { 0 }; // the file that is opened, by the line
    AsyncWork<QVector<host::PortInfo>> m_portLook;
    AsyncWork<CheckedConfig> m_check;
    AsyncWork<QStringList> m_fileLook;
};

/// Ports of the machine, and the named one where it is in no list, as a pseudo-terminal is.
QVector<host::PortInfo> portsWith(const QString &name);

/// Configurations in a folder, by name.
QStringList configsIn(const QString &folder);

} // namespace dx4::panel
