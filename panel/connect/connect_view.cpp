// SPDX-License-Identifier: MIT
// What the page of ports, plan and configuration shows, without widgets.
#include "panel/connect/connect_view.h"

#include "cli/line/watch_plan.h"
#include "host/base/length.h"
#include "panel/lineview/counts_model.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace dx4::panel {
namespace {

constexpr int frameBytes = 13; // request and what a reply has besides its registers

double milliseconds(host::Duration span)
{
    return std::chrono::duration<double, std::milli>(span).count();
}

} // namespace

QVector<host::PortInfo> portsWith(const QString &name)
{
    QVector<host::PortInfo> ports = host::listPorts();
    const QString device = host::portDevice(name);
    const bool isListed = std::any_of(
        ports.begin(), ports.end(), [&device](const auto &port) { return port.device == device; });
    if (isListed || name.isEmpty() || !QFileInfo::exists(device))
        return ports;
    host::PortInfo port;
    port.device = device;
    port.holders = host::holdersOf(device);
    ports.prepend(port);
    return ports;
}

QStringList configsIn(const QString &folder)
{
    QStringList files;
    const QDir place(folder);
    for (const QString &name :
         place.entryList({ QStringLiteral("*.toml") }, QDir::Files, QDir::Name))
        files.append(place.filePath(name));
    return files;
}

ConnectView::ConnectView(ConnectPort port, const CheckedConfig &running, Clock clock,
                         QObject *parent)
    : QObject(parent)
    , m_port(std::move(port))
    , m_clock(std::move(clock))
    , m_running(running)
    , m_ports({ tr("Port"), tr("Lasting name"), tr("Held by") }, {})
    , m_planTable({ tr("Station"), tr("Registers"), tr("Count"), tr("Wire ms") }, { 2, 3 })
{
    showPlan();
}

void ConnectView::follow(const host::LineService &service)
{
    connect(&service, &host::LineService::reloaded, this, &ConnectView::noteReloaded);
}

void ConnectView::look()
{
    if (const auto ports = m_portLook.take())
        showPorts(*ports);
    if (const auto files = m_fileLook.take())
        m_files = *files;
    if (const auto checked = m_check.take())
        takeChecked(*checked);
    const host::Duration now = m_clock.steady();
    if (m_stage == Stage::Taking && now - m_wantedAt >= takenWithin)
        m_stage = Stage::NotTaken;
    if (m_portLook.isBusy() || m_fileLook.isBusy() || (m_lookedAt && now - *m_lookedAt < lookEvery))
        return;
    m_lookedAt = now;
    m_portLook.begin(
        [list = m_port.listPorts, own = m_running.config.line.port] { return list(own); });
    m_fileLook.begin([list = m_port.listFiles, folder = QFileInfo(m_running.file).path()] {
        return list(folder);
    });
}

void ConnectView::finish()
{
    m_portLook.wait();
    m_fileLook.wait();
    m_check.wait();
    look();
}

void ConnectView::showPorts(const QVector<host::PortInfo> &ports)
{
    m_arePortsKnown = true;
    const QString own = host::portDevice(m_running.config.line.port);
    QVector<TableRow> rows;
    for (const host::PortInfo &port : ports) {
        const bool isOwn = port.device == own;
        const QString name =
            port.lastingName.isEmpty() ? port.description : QFileInfo(port.lastingName).fileName();
        rows.append(
            { { isOwn ? tr("%1, this line").arg(port.device) : port.device, name,
                port.holders.isEmpty() ? tr("nobody seen") : host::holderText(port.holders) },
              isOwn });
    }
    m_ports.setRows(rows);
}

void ConnectView::showPlan()
{
    QVector<TableRow> rows;
    for (const KEY_ADDRESS &block : m_running.plan.blocks) {
        const host::Duration wire = m_running.config.line.wireTime(frameBytes + 2 * block.count);
        rows.append(
            { { QString::number(block.station),
                rangeText(block.regType, block.address, block.count), QString::number(block.count),
                m_locale.toString(milliseconds(wire), 'f', 1) },
              true });
    }
    m_planTable.setRows(rows);
}

QString ConnectView::planText() const
{
    return summaryOf(m_running);
}

QString ConnectView::summaryOf(const CheckedConfig &checked) const
{
    const host::Duration round = cli::roundTime(checked.plan, checked.config, turnaround);
    return tr("%1 registers in %2 blocks; one round takes %3 ms when stations answer within %4 ms")
        .arg(m_locale.toString(checked.plan.wantedRegisters),
             m_locale.toString(host::lengthOf(checked.plan.blocks)),
             m_locale.toString(milliseconds(round), 'f', 1),
             m_locale.toString(milliseconds(turnaround), 'f', 0));
}

void ConnectView::open(const QString &file)
{
    if (m_check.isBusy() || m_stage == Stage::Taking)
        return;
    m_stage = Stage::Checking;
    m_opened = {};
    m_opened.file = file;
    m_check.begin([check = m_port.check, file] { return check(file); });
}

void ConnectView::takeChecked(const CheckedConfig &checked)
{
    m_opened = checked;
    m_stage = checked.isWhole() ? Stage::Whole : Stage::Wrong;
}

QString ConnectView::newStart() const
{
    return m_stage == Stage::Whole ? newStartReason(m_running.config, m_opened.config) : QString();
}

void ConnectView::takeOver()
{
    if (!canTakeOver())
        return;
    m_stage = Stage::Taking;
    m_wantedAt = m_clock.steady();
    m_port.reload(m_opened.config, m_opened.plan);
}

void ConnectView::noteReloaded(const QStringList &needRestart)
{
    if (m_stage != Stage::Taking && m_stage != Stage::NotTaken)
        return;
    m_stage = Stage::Taken;
    m_needRestart = needRestart;
    const host::LineSettings line = m_running.config.line; // goes on as it was begun
    m_running = m_opened;
    m_running.config.line = line;
    showPlan();
    Q_EMIT taken(m_running.config);
}

QString ConnectView::stateText() const
{
    switch (m_stage) {
    case Stage::Running:
        return tr("%1 runs").arg(m_running.file);
    case Stage::Checking:
        return tr("%1 is read").arg(m_opened.file);
    case Stage::Wrong:
        return tr("%1 has errors; %2 goes on").arg(m_opened.file, m_running.file);
    case Stage::Whole:
        return newStart().isEmpty()
            ? tr("%1 is whole and can be taken over; %2 runs").arg(m_opened.file, m_running.file)
            : tr("%1 is whole. %2; %3 goes on").arg(m_opened.file, newStart(), m_running.file);
    case Stage::Taking:
        return tr("%1 is taken over").arg(m_opened.file);
    case Stage::NotTaken:
        return tr("The line has not taken %1 over; %2 goes on").arg(m_opened.file, m_running.file);
    case Stage::Taken:
        return m_needRestart.isEmpty()
            ? tr("%1 runs").arg(m_running.file)
            : tr("%1 runs, but for %2: these take effect with a new start of dx4-panel")
                  .arg(m_running.file, m_needRestart.join(QStringLiteral(", ")));
    }
    return {};
}

QString ConnectView::detailText() const
{
    if (m_stage == Stage::Wrong)
        return errorsText(m_opened);
    const CheckedConfig &shown = m_stage == Stage::Whole ? m_opened : m_running;
    QStringList lines { summaryOf(shown), QString() };
    for (const host::StationConfig &station : shown.config.stations)
        lines.append(tr("Station %1  %2").arg(QString::number(station.address), station.name));
    return m_stage == Stage::Checking ? QString() : lines.join(QLatin1Char('\n'));
}

} // namespace dx4::panel
