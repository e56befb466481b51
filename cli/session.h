// SPDX-License-Identifier: MIT
// A line with the driver at work on it, as the commands that need one have it.
#pragma once

#include "cli/exit_code.h"
#include "cli/line_options.h"
#include "cli/target.h"
#include "host/cycle.h"
#include "host/frame_ring.h"
#include "host/guarded_exchange.h"
#include "host/serial_line.h"

#include <memory>

namespace dx4::cli {

/// One line, open, and one driver on it.
class Session {
public:
    /// Loads the driver and opens the port.
    ///
    /// @param ring  keeps what passes over the line, and outlives the session; null: nothing is
    /// kept
    /// @return null with the failure told
    static std::unique_ptr<Session> open(const LineOptions &options, Failure *failure,
                                         host::FrameRing *ring = nullptr);

    const LineOptions &options() const { return m_options; }
    host::Link &link() { return *m_link; }
    host::Line &line() { return *m_usedLine; }
    host::Cycle &cycle() { return *m_cycle; }
    const host::Cycle &cycle() const { return *m_cycle; }

    /// One exchange. Afterwards verdict() says what came back.
    host::Cycle::Step step() { return m_cycle->step(); }

    /// What came back in the last exchange.
    host::ReplyVerdict verdict() const;

    /// Reads a run, request by request; each that fails is tried as often as the options say.
    ///
    /// @return one value per register, or nothing with the failure told
    std::optional<QVector<quint16>> read(const Target &target, Failure *failure);

    /// Writes a run and waits until every echo has come.
    bool write(const Target &target, const QVector<quint16> &values, Failure *failure);

    /// Sends the configured stop to every station of the configuration, and says what was not
    /// confirmed. Without one nothing is sent.
    ///
    /// @return whether all were confirmed
    bool stopSafely(const QString &command);

private:
    Session(const LineOptions &options, host::FrameRing *ring);
    bool settle(const Target &target, Failure *failure);
    Failure failureOf(host::Cycle::Step step, const Target &target, int tries) const;

    LineOptions m_options;
    std::unique_ptr<host::Line> m_line;
    std::unique_ptr<host::Line> m_recorder; ///< around the line; null when nothing is kept
    host::Line *m_usedLine;
    std::unique_ptr<host::GuardedExchange> m_exchange;
    std::unique_ptr<host::Link> m_link;
    std::unique_ptr<host::Cycle> m_cycle;
    bool m_stopping = false;
};

} // namespace dx4::cli
