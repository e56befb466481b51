// SPDX-License-Identifier: MIT
// Alarms and journal of the panel, put together.
#include "panel/app/alarm_parts.h"

#include "panel/alarms/alarm_banner.h"
#include "panel/alarms/alarms_page.h"
#include "panel/app/panel_window.h"

#include <pwd.h>
#include <unistd.h>

namespace dx4::panel {
namespace {

QVector<int> stationsOf(const host::Config &config)
{
    QVector<int> stations;
    for (const host::StationConfig &station : config.stations)
        stations.append(station.address);
    return stations;
}

constexpr int lookInterval = 500; // ms between two looks for faults whose time is over

journal::KeeperSettings keeperSettings()
{
    journal::KeeperSettings settings;
    settings.journal.program = QStringLiteral("dx4-panel");
    return settings;
}

} // namespace

QString userName()
{
    const passwd *entry = getpwuid(geteuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name)
                 : QStringLiteral("user %1").arg(geteuid());
}

AlarmParts::AlarmParts(const Plant &plant, const Options &options, const Clock &clock)
    : m_clock(clock)
    , m_place(journalPlaceOf(options))
    , m_line(journalLineOf(options, plant.running.config))
    , m_words(plant.running.config)
    , m_stations(stationsOf(plant.running.config))
{
    const QString &line = m_line;
    const journal::Time began = clock.utc().toMSecsSinceEpoch();
    if (!m_place.path.isEmpty())
        m_keeper = std::make_unique<journal::JournalKeeper>(m_place.path, keeperSettings());
    AlarmPort port;
    port.snapshot = [service = plant.service.get()] { return service->snapshot(); };
    port.utc = clock.utc;
    port.who = userName();
    port.stations = m_stations;
    if (m_keeper)
        port.note = [this](journal::Event event) {
            event.line = m_line;
            m_keeper->note(event);
        };
    m_watch = std::make_unique<AlarmWatch>(port);
    m_watch->follow(*plant.service);
    m_desk = std::make_unique<JournalDesk>(m_place.path);
    if (m_keeper) {
        keep(plant, line);
        recordFaults(plant, line, began);
    }
    restoreAlarms(*m_desk, *m_watch, line, began);
}

AlarmParts::~AlarmParts() = default;

void AlarmParts::keep(const Plant &plant, const QString &line)
{
    m_keeper->watch(*plant.service, line,
                    { plant.running.config.states, plant.running.config.faults });
    QObject::connect(m_keeper.get(), &journal::JournalKeeper::troubled, m_watch.get(),
                     &AlarmWatch::noteJournal);
    QObject::connect(m_keeper.get(), &journal::JournalKeeper::recovered, m_watch.get(),
                     [watch = m_watch.get()] { watch->noteJournal({}); });
}

/// Frames are left out: a service does not give them.
void AlarmParts::recordFaults(const Plant &plant, const QString &line, journal::Time began)
{
    PastPort port;
    port.folder = m_place.snapshotFolder();
    port.line = line;
    port.began = began;
    port.config = plant.running.config;
    port.note = [this, line](journal::Event event) {
        event.line = line;
        m_keeper->note(event);
    };
    m_pastKeeper = std::make_unique<PastKeeper>(*m_desk, port);
    m_recorder = std::make_unique<PastRecorder>(m_clock.utc);
    m_recorder->follow(*plant.service);
    QObject::connect(m_watch.get(), &AlarmWatch::faultCame, m_recorder.get(), &PastRecorder::begin);
    QObject::connect(m_recorder.get(), &PastRecorder::completed, m_pastKeeper.get(),
                     &PastKeeper::keep);
    QObject::connect(&m_recorderTimer, &QTimer::timeout, m_recorder.get(), &PastRecorder::look);
    m_recorderTimer.start(lookInterval);
}

void AlarmParts::addTo(PanelWindow &window)
{
    const auto now = [clock = m_clock] { return clock.utc().toMSecsSinceEpoch(); };
    AlarmsPort port;
    port.watch = m_watch.get();
    port.now = now;
    port.words = m_words;
    port.stations = m_stations;
    if (m_keeper) {
        port.read = readingWith(*m_desk);
        port.save = savingWith(*m_desk);
        port.snapshotText = [this](const Alarm &alarm) { return m_pastKeeper->textOf(alarm); };
    }
    const int index = window.pageCount();
    window.addPage(new AlarmsPage(port), PanelWindow::tr("Alarms"));
    auto *banner = new AlarmBanner(*m_watch, m_words, now);
    QObject::connect(banner, &AlarmBanner::tapped, &window,
                     [&window, index] { window.openPage(index); });
    window.setBanner(banner);
}

} // namespace dx4::panel
