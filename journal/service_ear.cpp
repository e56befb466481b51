// SPDX-License-Identifier: MIT
// Turns what one line tells into what a journal keeps.
#include "journal/service_ear.h"

#include "host/base/length.h"
#include "host/link/notation.h"
#include "register_tables.h"

#include <utility>

namespace dx4::journal {
namespace {

Quality qualityOf(const host::Value &state)
{
    if (state.failed)
        return Quality::Failed;
    return state.stale ? Quality::Stale : Quality::Good;
}

int countOf(const host::RegisterValue &value)
{
    return value.scaling.isSigned ? static_cast<qint16>(value.state.value) : value.state.value;
}

QString restoreText(const host::RestoreReport &report)
{
    const QString done = QStringLiteral("restore ended: %1 written, %2 verified, %3 refused, "
                                        "%4 remaining, %5 unseen")
                             .arg(report.written)
                             .arg(report.verified)
                             .arg(report.refused.size())
                             .arg(report.remaining.size())
                             .arg(report.unseen);
    return report.interrupted.isEmpty() ? done
                                        : QStringLiteral("%1; %2").arg(done, report.interrupted);
}

} // namespace

ServiceEar::ServiceEar(host::LineService &service, const QString &line, KeeperQueue &queue,
                       std::function<void()> noted, int restate)
    : m_service(&service)
    , m_line(line)
    , m_queue(queue)
    , m_noted(std::move(noted))
{
    listen(service);
    listenToJobs(service);
    connect(&m_restate, &QTimer::timeout, this, [this] { this->restate(); });
    m_restate.start(restate);
}

void ServiceEar::listen(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::valuesChanged, this,
            [this](const QVector<host::RegisterValue> &values) { noteValues(values, 1); });
    connect(&service, &LineService::writeEnded, this,
            [this](const host::WriteOutcome &outcome) { noteWrite(outcome); });
    connect(&service, &LineService::alarmRaised, this,
            [this](const QString &text) { note(EventKind::Alarm, text); });
    connect(&service, &LineService::noticeGiven, this,
            [this](const QString &text) { note(EventKind::Notice, text); });
    connect(&service, &LineService::lineOpened, this,
            [this] { note(EventKind::Line, QStringLiteral("line opened"), 0, 0); });
    connect(&service, &LineService::lineWentDown, this, [this](const QString &reason) {
        note(EventKind::Line, QStringLiteral("line down: %1").arg(reason), 0, 1);
    });
    connect(&service, &LineService::stationLost, this, [this](int station) {
        note(EventKind::Station, QStringLiteral("station %1 does not answer").arg(station), station,
             1);
    });
    connect(&service, &LineService::stationBack, this, [this](int station) {
        note(EventKind::Station, QStringLiteral("station %1 is back").arg(station), station, 0);
    });
    connect(&service, &LineService::stopEnded, this, [this](int, const host::StopReport &report) {
        note(EventKind::Stop, report.text, 0, host::lengthOf(report.unconfirmed));
    });
}

void ServiceEar::listenToJobs(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::jobWrote, this,
            [this](const host::WriteOutcome &outcome) { noteWrite(outcome); });
    connect(&service, &LineService::restored, this, [this](int, const host::RestoreReport &report) {
        note(EventKind::Notice, restoreText(report));
    });
}

/// What the service no longer shows is not stated either.
void ServiceEar::restate()
{
    if (!m_service)
        return;
    QVector<host::RegisterValue> good;
    const auto snapshot = m_service->snapshot();
    for (const host::RegisterValue &value : snapshot->registers) {
        if (qualityOf(value.state) == Quality::Good)
            good.append(value);
    }
    noteValues(good, 0);
}

/// A value whose write has not ended is a wish.
void ServiceEar::noteValues(const QVector<host::RegisterValue> &values, int changes)
{
    for (const host::RegisterValue &value : values) {
        if (!value.state.known || value.state.writePending)
            continue;
        const Series series { { m_line, value.station, value.regType, value.address },
                              value.name,
                              value.scaling };
        m_queue.put(series, countOf(value), qualityOf(value.state), changes);
    }
    const QVector<Event> faults = m_faults.see(values);
    for (const Event &fault : faults)
        put(fault);
    m_noted();
}

void ServiceEar::noteWrite(const host::WriteOutcome &outcome)
{
    Event event;
    event.kind = EventKind::Write;
    event.station = outcome.wish.station;
    event.regType = outcome.wish.regType;
    event.address = outcome.wish.address;
    event.code = static_cast<int>(outcome.end);
    event.text = outcome.text;
    put(event);
    const bool isMemory = outcome.wish.regType == REG_LIST[TypeF];
    for (int i = 0; isMemory && outcome.sent && i < outcome.wish.values.size(); ++i)
        noteParameter(outcome, i);
}

/// Also where the write was not confirmed: the drive may have taken it.
void ServiceEar::noteParameter(const host::WriteOutcome &outcome, int index)
{
    const host::WriteWish &wish = outcome.wish;
    Event event;
    event.kind = EventKind::Parameter;
    event.station = wish.station;
    event.regType = wish.regType;
    event.address = wish.address + index;
    event.code = static_cast<int>(outcome.end);
    event.after = wish.values.at(index);
    if (index < outcome.before.size())
        event.before = outcome.before.at(index);
    const QString was = event.before ? QString::number(*event.before) : QStringLiteral("?");
    event.text = QStringLiteral("station %1, %2: %3 to %4, %5")
                     .arg(wish.station)
                     .arg(host::fullAddress(wish.regType, event.address), was)
                     .arg(*event.after)
                     .arg(QLatin1String(host::writeEndName(outcome.end)));
    m_queue.addWrite({ m_line, wish.station, wish.regType, event.address });
    put(event);
}

void ServiceEar::note(EventKind kind, const QString &text, int station, std::optional<int> code)
{
    Event event;
    event.kind = kind;
    event.station = station;
    event.code = code;
    event.text = text;
    put(event);
}

void ServiceEar::put(Event event)
{
    event.line = m_line;
    m_queue.put(std::move(event));
    m_noted();
}

} // namespace dx4::journal
