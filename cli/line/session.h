// SPDX-License-Identifier: MIT
// A line with the reference host at work on it, as the commands that need one have it.
#pragma once

#include "cli/console/exit_code.h"
#include "cli/line/line_options.h"
#include "cli/registers/target.h"
#include "host/recording/frame_ring.h"
#include "host/runtime/runtime.h"

#include <functional>
#include <memory>
#include <set>
#include <utility>

namespace dx4::cli {

class InterruptibleLine;

/// What a command wants beyond its options.
struct SessionWishes {
    host::FrameRing *ring = nullptr; ///< keeps what passes over the line; outlives the session
    host::Duration staleAfter = std::chrono::seconds(5); ///< age from which a value counts as old
    QVector<host::StopCommand> stops; ///< besides those of the configuration
};

/// Adds a stop for a station that has none yet.
void addStop(QVector<host::StopCommand> &stops, const host::StopCommand &added);

/// How a run is written.
struct WriteManner {
    bool always = false; ///< parameters also where the station holds the values already
    bool readBack = false; ///< parameters are read after the echo and compared
};

/// What became of one request of a write.
struct WriteResult {
    Target target;
    host::WriteOutcome outcome;
};

/// One line, open, and one running host on it.
class Session {
public:
    /// Loads the driver and opens the port. Signals are noted from then on.
    ///
    /// @return null with the failure told
    static std::unique_ptr<Session> open(const LineOptions &options, Failure *failure,
                                         const SessionWishes &wishes = {});
    ~Session();

    const LineOptions &options() const { return m_options; }
    host::Line &line();
    host::Runtime &runtime() { return *m_runtime; }
    const host::Runtime &runtime() const { return *m_runtime; }

    /// Says elsewhere what the host tells of the line, such as a station that needs a longer
    /// timeout; null: in JSON as an event, else on standard error.
    void onNotice(std::function<void(const QString &)> handler) { m_onNotice = std::move(handler); }

    /// What came back in the last exchange.
    host::ReplyVerdict verdict() const;

    /// Reads a run, request by request; each that fails is tried as often as the options say.
    ///
    /// @return one value per register, or nothing with the failure told
    std::optional<QVector<quint16>> read(const Target &target, Failure *failure);

    /// Writes a run through the host's write desk and waits until every request has ended.
    ///
    /// @return one result per request, those that were confirmed; when one was not the failure is
    ///         told and the rest is not sent
    QVector<WriteResult> write(const Target &target, const QVector<quint16> &values,
                               const WriteManner &manner, Failure *failure);

    /// Makes sure that a station is there, by reading its status word; a refusal will do.
    bool hear(int station, Failure *failure);

    /// Sends the stop to every station that has one, and waits for the echoes.
    host::StopReport stop();

    /// As stop(), and says what was confirmed, what was not, and how to stop a motor that may turn.
    /// Where nothing is configured, and after Ctrl-\, nothing is sent.
    ///
    /// @return false where a stop was due and was not confirmed
    bool stopSafely();

    /// Says which motors may turn though nobody meant to leave them so, and the command that stops
    /// each. These are the stations whose last command was not confirmed, and those that have a
    /// configured stop which could not be sent.
    void warnOfMotors();

    /// For an end without a chance to stop: counts every station with a stop as one that may turn.
    void noteUnstopped();

    /// Lets go of terminal and port and stops the process where Ctrl-Z asks for it; takes them back
    /// when the process goes on. Drives go on meanwhile. Between two exchanges only.
    void giveWayIfAsked();

private:
    Session(const LineOptions &options, const SessionWishes &wishes);
    bool settle(const Target &target, Failure *failure);
    Failure failureOf(host::Runtime::Step step, const Target &target, int tries) const;
    Failure failureOf(const host::WriteOutcome &outcome, const Target &target, int tries) const;
    int requests(bool writes) const; ///< sent so far
    void noteCommand(const Target &target, quint16 word, bool confirmed, bool sent);
    QString stopCommand(int station) const;
    void tellNotice(const QString &text) const;

    LineOptions m_options;
    QVector<host::StopCommand> m_stops;
    std::set<int> m_mayTurn; ///< stations
    std::function<void(const QString &)> m_onNotice;
    std::unique_ptr<host::Line> m_port;
    std::unique_ptr<host::Line> m_recorder; ///< around the port; null when nothing is kept
    std::unique_ptr<host::Line> m_tracer; ///< around that; null when nothing is shown
    std::unique_ptr<InterruptibleLine> m_line;
    std::unique_ptr<host::Runtime> m_runtime;
};

} // namespace dx4::cli
