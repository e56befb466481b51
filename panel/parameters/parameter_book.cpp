// SPDX-License-Identifier: MIT
// Two sets of parameters side by side, and what of them is to be written.
#include "panel/parameters/parameter_book.h"

#include "register_tables.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace dx4::panel {

ParameterPort parameterPortOf(host::LineService &service)
{
    return { [&service](const host::ParameterSet &begun) { return service.backUp(begun); },
             [&service](int station, const host::ParameterSet &set) {
                 return service.restore(station, set);
             },
             [&service](int id) { service.cancelJob(id); } };
}

ParameterBook::ParameterBook(ParameterPort port, const host::Config &config, Clock clock,
                             QObject *parent)
    : QObject(parent)
    , m_port(std::move(port))
    , m_config(config)
    , m_names(config)
    , m_clock(std::move(clock))
{
    if (!m_config.stations.isEmpty())
        showDrive(Second, m_config.stations.constFirst().address);
}

void ParameterBook::follow(const host::LineService &service)
{
    using host::LineService;
    connect(&service, &LineService::jobProgressed, this, &ParameterBook::noteProgress);
    connect(&service, &LineService::backedUp, this, &ParameterBook::noteBackedUp);
    connect(&service, &LineService::writeEnded, this, &ParameterBook::noteWritten);
    connect(&service, &LineService::jobWrote, this, &ParameterBook::noteWritten);
}

QString ParameterBook::nameOf(int station) const
{
    for (const host::StationConfig &drive : m_config.stations) {
        if (drive.address == station && !drive.name.isEmpty())
            return drive.name;
    }
    return tr("Station %1").arg(station);
}

void ParameterBook::leave(Place place)
{
    for (auto job = m_jobs.begin(); job != m_jobs.end();) {
        const bool isOfIt = job->second.place == place;
        if (isOfIt)
            m_port.cancelJob(job->first);
        job = isOfIt ? m_jobs.erase(job) : std::next(job);
    }
    m_ticks.clear();
    m_sides.at(place) = {};
}

void ParameterBook::showNothing(Place place)
{
    leave(place);
    Q_EMIT changed();
}

void ParameterBook::showDrive(Place place, int station)
{
    const Place other = place == First ? Second : First;
    if (side(other).kind == ParameterSide::Kind::Drive && side(other).set.station == station)
        leave(other);
    leave(place);
    ParameterSide &drive = m_sides.at(place);
    drive.kind = ParameterSide::Kind::Drive;
    drive.name = nameOf(station);
    drive.set.station = station;
    Q_EMIT changed();
}

void ParameterBook::showFile(Place place, const QString &path, const host::ParameterSet &set)
{
    leave(place);
    ParameterSide &file = m_sides.at(place);
    file.kind = ParameterSide::Kind::File;
    file.name = QFileInfo(path).fileName();
    file.path = path;
    file.set = set;
    Q_EMIT changed();
}

bool ParameterBook::hasDrive() const
{
    return std::any_of(m_sides.begin(), m_sides.end(), [](const ParameterSide &side) {
        return side.kind == ParameterSide::Kind::Drive;
    });
}

bool ParameterBook::isCompared() const
{
    return std::none_of(m_sides.begin(), m_sides.end(), [](const ParameterSide &side) {
        return side.kind == ParameterSide::Kind::Nothing;
    });
}

void ParameterBook::read()
{
    for (const Place place : { First, Second }) {
        if (side(place).kind == ParameterSide::Kind::Drive && !side(place).isReading)
            begin(place);
    }
    Q_EMIT changed();
}

void ParameterBook::readAgain(int station)
{
    for (const Place place : { First, Second }) {
        const ParameterSide &drive = side(place);
        if (drive.kind != ParameterSide::Kind::Drive || drive.set.station != station)
            continue;
        showDrive(place, station);
        begin(place);
    }
    Q_EMIT changed();
}

void ParameterBook::begin(Place place)
{
    ParameterSide &drive = m_sides.at(place);
    host::ParameterSet begun;
    begun.station = drive.set.station;
    Job job { place, now(), {}, false };
    if (drive.isBrokenOff && drive.readAt) {
        begun = drive.set;
        job.begunAt = *drive.readAt;
    }
    const int id = m_port.backUp(begun);
    if (id == 0) {
        Q_EMIT failed(tr("%1 cannot be read: the line is closed.").arg(drive.name));
        return;
    }
    m_jobs[id] = job;
    drive.isReading = true;
    drive.done = 0;
    drive.total = 0;
}

void ParameterBook::cancel()
{
    for (auto &[id, job] : m_jobs) {
        job.isCancelled = true;
        m_port.cancelJob(id);
    }
}

void ParameterBook::noteProgress(int id, int done, int total)
{
    const auto job = m_jobs.find(id);
    if (job == m_jobs.end())
        return;
    ParameterSide &drive = m_sides.at(job->second.place);
    drive.done = done;
    drive.total = total;
    Q_EMIT changed();
}

void ParameterBook::noteBackedUp(int id, const host::ParameterSet &set, const QString &error)
{
    const auto found = m_jobs.find(id);
    if (found == m_jobs.end())
        return;
    const Job job = found->second;
    m_jobs.erase(found);
    ParameterSide &drive = m_sides.at(job.place);
    drive.isReading = false;
    drive.isBrokenOff = !error.isEmpty() || !job.written.empty();
    // What broke off before its first register leaves what was read earlier.
    if (error.isEmpty() || !set.values.isEmpty() || !set.refused.isEmpty()) {
        drive.set = set;
        drive.readAt = job.begunAt;
        drive.isSaved = false;
    } else {
        drive.isBrokenOff = false;
    }
    for (int address : job.written)
        forget(job.place, address);
    Q_EMIT changed();
    if (!error.isEmpty() && !job.isCancelled)
        Q_EMIT failed(tr("%1 was not read to its end: %2").arg(drive.name, error));
}

void ParameterBook::forget(Place place, int address)
{
    ParameterSide &drive = m_sides.at(place);
    if (drive.set.values.remove(address) > 0)
        drive.isBrokenOff = true;
    drive.isSaved = false;
}

void ParameterBook::noteWritten(const host::WriteOutcome &outcome)
{
    if (outcome.wish.regType != REG_LIST[TypeF] || !outcome.sent)
        return;
    for (const Place place : { First, Second }) {
        const ParameterSide &drive = side(place);
        const bool isIts =
            drive.kind == ParameterSide::Kind::Drive && drive.set.station == outcome.wish.station;
        for (int i = 0; isIts && i < outcome.wish.values.size(); ++i) {
            forget(place, outcome.wish.address + i);
            for (auto &[id, job] : m_jobs) {
                if (job.place == place)
                    job.written.insert(outcome.wish.address + i);
            }
        }
    }
    Q_EMIT changed();
}

RowClass ParameterBook::classOf(int address) const
{
    using Known = ParameterSide::Known;
    const Known here = side(First).known(address);
    const Known there = side(Second).known(address);
    if (here == Known::NotRead || there == Known::NotRead)
        return RowClass::NotRead;
    if (here != there)
        return here == Known::Value ? RowClass::OnlyHere : RowClass::OnlyThere;
    return side(First).value(address) == side(Second).value(address) ? RowClass::Equal
                                                                     : RowClass::Differ;
}

ClassCounts ParameterBook::counts() const
{
    ClassCounts counts;
    for (int address : m_all) {
        switch (classOf(address)) {
        case RowClass::Equal:
            ++counts.equal;
            break;
        case RowClass::Differ:
            ++counts.differ;
            break;
        case RowClass::OnlyHere:
            ++counts.onlyHere;
            break;
        case RowClass::OnlyThere:
            ++counts.onlyThere;
            break;
        case RowClass::NotRead:
            ++counts.notRead;
            break;
        }
    }
    return counts;
}

QString ParameterBook::countsText() const
{
    if (isCompared()) {
        const ClassCounts all = counts();
        return tr("%1 differ, %2 equal, %3 only left, %4 only right, %5 not read")
            .arg(all.differ)
            .arg(all.equal)
            .arg(all.onlyHere)
            .arg(all.onlyThere)
            .arg(all.notRead);
    }
    const bool isFirst = side(First).kind != ParameterSide::Kind::Nothing;
    const host::ParameterSet &set = side(isFirst ? First : Second).set;
    return tr("%1 read, %2 refused, %3 not read")
        .arg(set.values.size())
        .arg(set.refused.size())
        .arg(m_all.size() - set.values.size() - set.refused.size());
}

bool ParameterBook::canTick(int address) const
{
    const bool isWritable = side(Second).kind == ParameterSide::Kind::Drive && isCompared();
    return isWritable && classOf(address) == RowClass::Differ;
}

bool ParameterBook::isTicked(int address) const
{
    const auto tick = m_ticks.find(address);
    return tick != m_ticks.end() && canTick(address)
        && side(First).value(address) == tick->second.first
        && side(Second).value(address) == tick->second.second;
}

void ParameterBook::tick(const QVector<int> &addresses, bool isOn)
{
    for (int address : addresses) {
        m_ticks.erase(address);
        if (isOn && canTick(address))
            m_ticks[address] = { *side(First).value(address), *side(Second).value(address) };
    }
    Q_EMIT changed();
}

host::ParameterSet ParameterBook::ticked() const
{
    host::ParameterSet set;
    set.station = side(First).set.station;
    for (const auto &[address, values] : m_ticks) {
        if (isTicked(address))
            set.values.insert(address, values.first);
    }
    return set;
}

void ParameterBook::noteSaved(int station, const host::ParameterSet &saved)
{
    for (ParameterSide &drive : m_sides) {
        if (drive.kind == ParameterSide::Kind::Drive && drive.set.station == station)
            drive.isSaved = drive.set == saved;
    }
    Q_EMIT changed();
}

} // namespace dx4::panel
