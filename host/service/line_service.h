// SPDX-License-Identifier: MIT
// One line on a thread of its own, for windows and services.
#pragma once

#include "host/service/line_factory.h"
#include "host/service/line_snapshot.h"
#include "host/service/service_events.h"
#include "host/service/service_settings.h"

#include <QObject>

#include <memory>

namespace dx4::host {

class Place;

/// Runs one line on a thread of its own: the factory, the driver, the line and the runtime are
/// called on it alone.
///
/// Every function may be called from any thread and never waits for the line. What happens arrives
/// as signals on the thread that the service lives on, when its event loop runs. At most one
/// delivery waits in that loop: values that change meanwhile are merged, the newest one of each
/// register is told; everything else is told one by one and in order. A snapshot() taken in a slot
/// is at least as new as the signal, but for what happens in the course of a stop.
///
/// A receiver that hangs delays nothing here, and a line that hangs nothing there.
///
/// EventLoopService is the same without a thread, for small programs.
class LineService : public QObject {
    Q_OBJECT

public:
    /// Starts the thread. The line is opened there, and again whenever it breaks. The process needs
    /// a QCoreApplication. Throws std::system_error where the system has no thread or no descriptor
    /// left.
    ///
    /// @param factory  called once, on that thread; where it gives no line or no driver, the line
    ///                 is down for good
    explicit LineService(LineFactory factory, const ServiceSettings &settings = {},
                         QObject *parent = nullptr);

    /// Ends the thread and joins it: stops that were asked for are carried out first, at most for
    /// their budget; without them it takes as long as stop() does to begin. Drives are not stopped
    /// unless stop() was called. Each write and job that is open gets its outcome, and what was not
    /// delivered is, but for changed values; on the thread that destroys the service, before this
    /// returns. What a slot throws then is dropped. Nothing is called afterwards.
    ~LineService() override;

    /// What was known after the last request. Empty before the first.
    std::shared_ptr<const LineSnapshot> snapshot() const;

    /// Takes a write; writes to one station take effect in the order of these calls. Its outcome
    /// comes once, by writeEnded(). From the call of stop() to its end every write is refused.
    ///
    /// @return its id; 0 where the service is being destroyed: there is no outcome then
    int submit(const WriteWish &wish);

    /// Stops the drives, see Runtime::stop(). Writes that wait are dropped, jobs end. A stop that
    /// is asked for while another one is under way shares its end when that confirmed all.
    ///
    /// It begins when the request that is on the line has ended: after what is left of its response
    /// timeout and of the wire time of its reply, at most. Pauses, waits for replies that are owed,
    /// gaps before a request and the guard's own reads behind the first are cut short. The gap
    /// before the stop comes on top. What cannot be cut is the system's: opening a port, and up to
    /// one second and twice the wire time where it does not take the bytes of a request.
    ///
    /// @param budget  for the echoes of all stations
    /// @return an id for stopEnded(); 0 where the service is being destroyed: nothing is stopped
    int stop(Duration budget);

    /// The user is there and gives up the stops that are not confirmed, see Runtime::cancelStop().
    /// A stop under way is given up in its next pause.
    void cancelStop();

    /// The user is there. With RuntimeSettings::userPatience, call it from a timer on the thread
    /// whose hanging is to stop the drives.
    void noteUser();

    /// Replaces what is polled. Values stay.
    void setPlan(const Plan &plan);

    /// Takes over what a configuration says of stations, stops, names and scaling; reloaded() tells
    /// when. Its line and link take effect with a new service alone.
    ///
    /// @param plan  of that configuration, as planOf() made it with a planner of the caller's
    void reload(const Config &config, const Plan &plan);

    /// Reads registers once; their values come by readEnded().
    ///
    /// @return an id; 0 where the service is being destroyed
    int read(int station, const QString &regType, int address, int count = 1);

    /// Reads the parameters of a station; they come by backedUp(). Jobs are done one after the
    /// other, and reads go between the requests of a longer one.
    ///
    /// @param begun  what a backup that broke off has read already, with its station
    /// @return an id, for cancelJob() as well; 0 where the service is being destroyed
    int backUp(const ParameterSet &begun);

    /// Makes a station hold the values of a set, see restoreParameters().
    ///
    /// @return an id, for cancelJob() as well; 0 where the service is being destroyed
    int restore(int station, const ParameterSet &set);

    /// Has a read, a backup or a restore end before its next request; a write that was sent is
    /// followed to its outcome. It ends by its signal, as ever.
    void cancelJob(int id);

    /// Asks for what was counted on the line; it comes by countersTaken(), in the middle of a long
    /// job too.
    ///
    /// @return an id; 0 where the service is being destroyed
    int takeCounters();

    bool event(QEvent *event) override;

Q_SIGNALS:
    /// Values, or what is known of them, changed; each register at most once. The first time, every
    /// register that is polled is among them.
    void valuesChanged(const QVector<dx4::host::RegisterValue> &values);
    void writeEnded(const dx4::host::WriteOutcome &outcome);
    /// What must not go unheard, see Runtime::onAlarm().
    void alarmRaised(const QString &text);
    /// What a user had better know of the line, see Runtime::onNotice().
    void noticeGiven(const QString &text);
    void lineOpened();
    /// The line is closed, or there is a new reason for that.
    void lineWentDown(const QString &reason);
    /// The station does not answer and is left alone.
    void stationLost(int station);
    void stationBack(int station);
    void stopEnded(int id, const dx4::host::StopReport &report);
    void readEnded(int id, const dx4::host::AccessResult &result);
    /// So many of the registers of a backup or restore are settled; a restore counts anew for its
    /// second reading.
    void jobProgressed(int id, int done, int total);
    /// A write of a restore has ended. The report counts it as well; this tells what was written.
    ///
    /// @param outcome  with the id of the job
    void jobWrote(const dx4::host::WriteOutcome &outcome);
    /// @param error  why the set is not complete; empty when it is
    void backedUp(int id, const dx4::host::ParameterSet &set, const QString &error);
    void restored(int id, const dx4::host::RestoreReport &report);
    /// A configuration was taken over, but for these settings of its line and link, which wait for
    /// a new service; see restartKeys(). On a line that is down for good nothing is, nor is it
    /// told.
    void reloaded(const QStringList &needRestart);
    /// @param counters  of the whole life of the line; none where it is down for good
    void countersTaken(int id, const dx4::host::LineCounters &counters);

protected:
    /// Runs the line elsewhere than on a thread of its own.
    LineService(LineFactory factory, const ServiceSettings &settings, std::unique_ptr<Place> place,
                QObject *parent);

    const Place &place() const;

private:
    struct Engine;
    struct Teller;

    void deliver();

    const std::unique_ptr<Engine> m_engine;
};

} // namespace dx4::host

Q_DECLARE_METATYPE(dx4::host::WriteOutcome)
Q_DECLARE_METATYPE(dx4::host::StopReport)
Q_DECLARE_METATYPE(dx4::host::AccessResult)
Q_DECLARE_METATYPE(dx4::host::ParameterSet)
Q_DECLARE_METATYPE(dx4::host::RestoreReport)
Q_DECLARE_METATYPE(dx4::host::LineCounters)
