// SPDX-License-Identifier: MIT
// One line as the pages see it: what is shown of each drive, and what was asked of it.
#pragma once

#include "host/config/control_config.h"
#include "host/service/line_service.h"
#include "panel/model/clock.h"
#include "panel/model/command_way.h"
#include "panel/model/drive_values.h"
#include "panel/model/shown.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace dx4::panel {

/// What the pages need of a line; a service gives it, or a test.
struct LinePort {
    std::function<std::shared_ptr<const host::LineSnapshot>()> snapshot;
    std::function<int(const host::WriteWish &)> submit;
    std::function<int(host::Duration)> stop;
};

/// The port of a service, which outlives it.
LinePort portOf(host::LineService &service);

/// What a drive's words mean to the panel.
struct DriveWords {
    quint16 run = 1; ///< "CW" value that starts the motor
    quint16 stop = 0; ///< "CW" value that stops it
    std::optional<quint16> reverse; ///< "CW" value that starts it the other way; none: not offered
    std::optional<int> runningBit; ///< of "SW": the motor is fed; none: nothing reports it
};

/// The words are those of the configuration, the bit the one that its states call "running".
DriveWords wordsOf(const host::Config &config, const host::ControlConfig &control = {});

/// A value with what it is called.
struct NamedShown {
    QString name;
    Shown shown;
};

/// One drive as it is drawn.
struct DriveShown {
    int station = 0;
    QString name; ///< of the configuration, else "Station 3"
    Shown frequency;
    Shown set;
    Shown state;
    Shown fault;
    bool isFaulty = false; ///< a fault code other than 0 is known
    bool mayRun = false; ///< the motor was seen to run or was started, and nothing said since that
                         ///< it stands
    bool canReverse = false; ///< the configuration says how it is started the other way
    bool canTakeFrequency = false; ///< the configuration says how a frequency is written
    QVector<NamedShown> others;
    QString way; ///< of the last command; empty: none
    bool isWayBad = false;
};

/// Holds the newest snapshot and the ways of the commands. All on the thread of the window.
class PanelLine : public QObject {
    Q_OBJECT

public:
    PanelLine(LinePort port, const host::Config &config, const DriveWords &words, Clock clock,
              QObject *parent = nullptr);

    /// Listens to the ends of writes and stops, and to what a user is to be told.
    void follow(const host::LineService &service);

    int driveCount() const { return static_cast<int>(m_config.stations.size()); }
    DriveShown drive(int index) const;

    /// Takes over names, states, faults and the stop of a configuration with the same stations.
    void takeConfig(const host::Config &config);

    /// What stations are called, for a sentence: "Feed pump, Conveyor"; of many the first ones and
    /// how many more.
    QString namesOf(const QVector<int> &stations) const;

    /// Stations of which DriveShown::mayRun is true, ascending.
    QVector<int> mayRun() const;

    /// Whether the motor of a station is known to stand: a status word that is not old says so, and
    /// nothing was sent since that starts it.
    bool stands(int station) const;

    void start(int index);

    /// Starts it the other way, where the words say how.
    void reverse(int index);
    void stop(int index);
    void setFrequency(int index, double hertz);

    /// Highest frequency that the drive's register can hold; the drive may allow less.
    double highestFrequency(int index) const;

    /// Stops every drive; see LineService::stop().
    void stopAll();
    bool isStopping() const { return m_stopId != 0; }

    /// What is to be known of line and stop, newest; empty: all is well.
    QString message() const;
    bool isMessageBad() const { return !downReason().isEmpty() || m_isMessageBad; }

    /// Takes the newest snapshot and lets time pass; to be called some times a second.
    void look();

    void noteWriteEnded(const dx4::host::WriteOutcome &outcome);
    void noteStopEnded(int id, const dx4::host::StopReport &report);
    void noteAlarm(const QString &text);

Q_SIGNALS:
    /// The stop that was asked for last has ended.
    ///
    /// @param unconfirmed  stations that may still run
    void stopped(const QVector<int> &unconfirmed);

private:
    struct Followed {
        CommandWay way;
        bool mayRun = false;
        bool isStopOpen = false; // the last stop of all was not confirmed by it
        host::Duration startedAt { 0 };
    };

    host::Duration sinceSnapshot() const;
    const host::RegisterValue *certainStatus(int station) const;
    QString downReason() const;
    QString nameOf(const host::StationConfig &station) const;
    void noteRunning(Followed &followed, bool isRunning);
    int stationOf(int index) const { return m_config.stations.at(index).address; }
    void run(int index, quint16 word, const QString &what);
    void send(int index, const host::WriteWish &wish, const QString &what,
              const std::optional<Expectation> &expected);
    std::optional<Expectation> runningIs(bool isRunning) const;
    void noteValues(int station, Followed &followed);
    void tell(const QString &text, bool isBad);

    const LinePort m_port;
    host::Config m_config;
    DriveWords m_words;
    const Clock m_clock;
    std::shared_ptr<const host::LineSnapshot> m_snapshot;
    host::Duration m_seenAt { 0 }; // when the snapshot was seen first
    std::map<int, Followed> m_followed; // by station
    int m_stopId = 0; // of the stop under way; 0: none
    QString m_message;
    bool m_isMessageBad = false;
};

} // namespace dx4::panel
