// SPDX-License-Identifier: MIT
// One line on a thread of its own, for windows and services.
#include "host/service/line_service.h"

#include "host/service/line_worker.h"
#include "host/service/place.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace dx4::host {
namespace {

QEvent::Type deliveryType()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

/// For connections to receivers on other threads.
void registerTypes()
{
    qRegisterMetaType<QVector<RegisterValue>>("QVector<dx4::host::RegisterValue>");
    qRegisterMetaType<WriteOutcome>("dx4::host::WriteOutcome");
    qRegisterMetaType<StopReport>("dx4::host::StopReport");
    qRegisterMetaType<AccessResult>("dx4::host::AccessResult");
    qRegisterMetaType<ParameterSet>("dx4::host::ParameterSet");
    qRegisterMetaType<RestoreReport>("dx4::host::RestoreReport");
    qRegisterMetaType<LineCounters>("dx4::host::LineCounters");
}

} // namespace

struct LineService::Engine {
    Engine(LineFactory factory, const ServiceSettings &settings, std::unique_ptr<Place> where,
           LineService *service)
        : place(std::move(where))
        , inbox(place->waits())
        , outbox([service] { QCoreApplication::postEvent(service, new QEvent(deliveryType())); })
        , worker(std::move(factory), settings, place->waits(), inbox, outbox)
    {
    }

    /// @return the id, or 0 where nothing is taken any more
    int put(int id, Command command)
    {
        return inbox.put(std::move(command)) == Inbox::Taken::Closed ? 0 : id;
    }

    const std::unique_ptr<Place> place;
    Inbox inbox;
    Outbox outbox;
    LineWorker worker;
};

/// Tells each event by its signal.
struct LineService::Teller {
    LineService &from;

    void operator()(const WriteOutcome &outcome) const { Q_EMIT from.writeEnded(outcome); }
    void operator()(const AlarmRaised &alarm) const { Q_EMIT from.alarmRaised(alarm.text); }
    void operator()(const NoticeGiven &notice) const { Q_EMIT from.noticeGiven(notice.text); }
    void operator()(const LineOpened &) const { Q_EMIT from.lineOpened(); }
    void operator()(const LineWentDown &line) const { Q_EMIT from.lineWentDown(line.reason); }
    void operator()(const StationLost &lost) const { Q_EMIT from.stationLost(lost.station); }
    void operator()(const StationBack &back) const { Q_EMIT from.stationBack(back.station); }
    void operator()(const StopEnded &stop) const { Q_EMIT from.stopEnded(stop.id, stop.report); }
    void operator()(const ReadEnded &read) const { Q_EMIT from.readEnded(read.id, read.result); }
    void operator()(const JobProgressed &job) const
    {
        Q_EMIT from.jobProgressed(job.id, job.done, job.total);
    }
    void operator()(const JobWrote &job) const { Q_EMIT from.jobWrote(job.outcome); }
    void operator()(const BackupEnded &backup) const
    {
        Q_EMIT from.backedUp(backup.id, backup.set, backup.error);
    }
    void operator()(const RestoreEnded &restore) const
    {
        Q_EMIT from.restored(restore.id, restore.report);
    }
    void operator()(const Reloaded &reload) const { Q_EMIT from.reloaded(reload.needRestart); }
    void operator()(const CountersTaken &taken) const
    {
        Q_EMIT from.countersTaken(taken.id, taken.counters);
    }
};

LineService::LineService(LineFactory factory, const ServiceSettings &settings, QObject *parent)
    : LineService(std::move(factory), settings, std::make_unique<OwnThread>(), parent)
{
}

LineService::LineService(LineFactory factory, const ServiceSettings &settings,
                         std::unique_ptr<Place> place, QObject *parent)
    : QObject(parent)
    , m_engine(std::make_unique<Engine>(std::move(factory), settings, std::move(place), this))
{
    registerTypes();
    m_engine->place->start([engine = m_engine.get()] { engine->worker.run(); });
}

LineService::~LineService()
{
    m_engine->inbox.close();
    m_engine->place->join();
    while (const auto event = m_engine->outbox.takeEvent()) {
        try {
            std::visit(Teller { *this }, *event);
        } catch (...) {
            continue; // of a slot; the others are told all the same
        }
    }
}

const Place &LineService::place() const
{
    return *m_engine->place;
}

std::shared_ptr<const LineSnapshot> LineService::snapshot() const
{
    return m_engine->outbox.snapshot();
}

int LineService::submit(const WriteWish &wish)
{
    const SubmitWrite write { m_engine->inbox.nextId(), wish };
    const Inbox::Taken taken = m_engine->inbox.put(write);
    if (taken == Inbox::Taken::Closed)
        return 0;
    if (taken == Inbox::Taken::Stopping)
        m_engine->outbox.post(
            { refusedWrite(write, Refusal::Stopping, refusalText(Refusal::Stopping)) });
    return write.id;
}

int LineService::stop(Duration budget)
{
    const int id = m_engine->inbox.nextId();
    return m_engine->put(id, StopDrives { id, budget });
}

void LineService::cancelStop()
{
    m_engine->inbox.put(CancelStop {});
}

void LineService::noteUser()
{
    m_engine->inbox.noteUser();
}

void LineService::setPlan(const Plan &plan)
{
    m_engine->inbox.put(TakePlan { plan });
}

void LineService::reload(const Config &config, const Plan &plan)
{
    m_engine->inbox.put(TakeConfig { config, plan });
}

int LineService::read(int station, const QString &regType, int address, int count)
{
    const int id = m_engine->inbox.nextId();
    return m_engine->put(id, ReadOnce { id, station, regType, address, count });
}

int LineService::backUp(const ParameterSet &begun)
{
    const int id = m_engine->inbox.nextId();
    return m_engine->put(id, BackUp { id, begun });
}

int LineService::restore(int station, const ParameterSet &set)
{
    const int id = m_engine->inbox.nextId();
    return m_engine->put(id, Restore { id, station, set });
}

int LineService::takeCounters()
{
    const int id = m_engine->inbox.nextId();
    return m_engine->put(id, TakeCounters { id });
}

void LineService::cancelJob(int id)
{
    m_engine->inbox.cancelJob(id);
}

bool LineService::event(QEvent *event)
{
    if (event->type() != deliveryType())
        return QObject::event(event);
    deliver();
    return true;
}

/// A slot may turn an event loop of its own, in which the next delivery comes, and may destroy the
/// service: each delivery is one signal, and nothing is touched behind it.
void LineService::deliver()
{
    const Delivery delivery = m_engine->outbox.take();
    if (delivery.event)
        std::visit(Teller { *this }, *delivery.event);
    else if (!delivery.changes.isEmpty())
        Q_EMIT valuesChanged(delivery.changes);
}

} // namespace dx4::host
