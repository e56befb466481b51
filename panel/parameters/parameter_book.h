// SPDX-License-Identifier: MIT
// Two sets of parameters side by side, and what of them is to be written.
#pragma once

#include "host/service/line_service.h"
#include "panel/model/clock.h"
#include "panel/parameters/parameter_names.h"
#include "panel/parameters/parameter_side.h"

#include <QObject>

#include <array>
#include <functional>
#include <map>
#include <set>

namespace dx4::panel {

/// What the page needs of a line; a service gives it, or a test.
struct ParameterPort {
    std::function<int(const host::ParameterSet &)> backUp;
    std::function<int(int, const host::ParameterSet &)> restore;
    std::function<void(int)> cancelJob;
};

/// The port of a service, which outlives it.
ParameterPort parameterPortOf(host::LineService &service);

/// How a register compares. Here is the first side, there the second one.
enum class RowClass { Equal, Differ, OnlyHere, OnlyThere, NotRead };

/// How many registers are of each class; together they are all 203.
struct ClassCounts {
    int equal = 0; ///< also those that neither side has
    int differ = 0;
    int onlyHere = 0;
    int onlyThere = 0;
    int notRead = 0; ///< on one side at least
};

/// A pair of sides. What is read comes in the background; nothing here writes to a drive.
///
/// The values of a drive are those of one moment, and its side tells how long ago that was. They do
/// not go after some seconds, as measured ones do: parameters change by being written, and one that
/// is seen to be written is not shown any more until it is read again.
class ParameterBook : public QObject {
    Q_OBJECT

public:
    enum Place { First, Second };

    ParameterBook(ParameterPort port, const host::Config &config, Clock clock,
                  QObject *parent = nullptr);

    /// Listens to readings, and to writes of registers that are shown.
    void follow(const host::LineService &service);

    void showNothing(Place place);

    /// Shows a drive, not read yet. Where it stands on the other side, nothing is there then.
    void showDrive(Place place, int station);
    void showFile(Place place, const QString &path, const host::ParameterSet &set);

    const ParameterSide &side(Place place) const { return m_sides.at(place); }
    const ParameterNames &names() const { return m_names; }
    const host::Config &config() const { return m_config; }
    const ParameterPort &port() const { return m_port; }
    QString nameOf(int station) const;
    host::Duration now() const { return m_clock.steady(); }

    bool hasDrive() const;

    /// Whether there are two sides.
    bool isCompared() const;

    /// Reads the drives that are shown: one that broke off goes on, the others anew.
    void read();

    /// Forgets what was read of a drive and reads it anew.
    void readAgain(int station);

    /// Ends the readings; what was read stays.
    void cancel();
    bool isReading() const { return !m_jobs.empty(); }

    RowClass classOf(int address) const;
    ClassCounts counts() const;

    /// "12 differ, 180 equal, ..."; of one side alone, how much was read.
    QString countsText() const;

    /// Whether the first side's value may be written to the second side: a drive that was read to
    /// hold another one.
    bool canTick(int address) const;

    /// A tick holds for the two values that it was set for. It goes when one of them changes.
    bool isTicked(int address) const;
    void tick(const QVector<int> &addresses, bool isOn);

    /// Values of the first side that are ticked; the station is the first side's.
    host::ParameterSet ticked() const;

    /// A file holds what was read of this drive.
    void noteSaved(int station, const host::ParameterSet &saved);

    void noteProgress(int id, int done, int total);
    void noteBackedUp(int id, const dx4::host::ParameterSet &set, const QString &error);
    void noteWritten(const dx4::host::WriteOutcome &outcome);

Q_SIGNALS:
    void changed();

    /// A reading broke off by itself.
    void failed(const QString &text);

private:
    struct Job {
        Place place;
        host::Duration begunAt;
        std::set<int> written; ///< meanwhile: whether they were read before is not known
        bool isCancelled = false;
    };

    void leave(Place place);
    void begin(Place place);
    void forget(Place place, int address);

    const ParameterPort m_port;
    const host::Config m_config;
    const ParameterNames m_names;
    const Clock m_clock;
    const QVector<int> m_all = host::allParameters();
    std::array<ParameterSide, 2> m_sides;
    std::map<int, Job> m_jobs; // by id
    std::map<int, std::pair<quint16, quint16>> m_ticks; // by address
};

} // namespace dx4::panel
