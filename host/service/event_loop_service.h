// SPDX-License-Identifier: MIT
// One line on the event loop of its owner's thread, for small programs.
#pragma once

#include "host/service/line_service.h"

namespace dx4::host {

class LoopPlace;

/// Runs one line without a thread, on the event loop of the thread that makes it and that it stays
/// on. Calls, signals and outcomes are those of LineService, and so is what they promise; no call
/// turns the event loop. Two things differ:
///
/// - Line and loop share their thread. A slot that takes long, or a loop that nobody turns, keeps
///   the line waiting, stops and RuntimeSettings::userPatience among it: drives that must stop
///   though the program hangs need a LineService. A nested event loop runs the line as well.
/// - What the system does not do without blocking blocks the loop: loading the driver and opening
///   the port, which is tried again after pauses of up to 2 s as long as it fails. So do a factory,
///   a pause or a Line of the caller's own, which run on a stack of `stackSize` bytes, turn no
///   event loop and do not destroy the service; a Line waits through Line::setWaits().
///
/// Waits for a reply, gaps and pauses cost the loop nothing. The destructor carries out what it
/// promises with waits that do not turn the loop, so that no slot but those of its own signals
/// runs meanwhile: it lasts as long as joining the thread of a LineService. A program that cannot
/// stand still for that calls stop() before and waits for stopEnded().
class EventLoopService : public LineService {
    Q_OBJECT

public:
    /// Bytes. More than ten times what a line of the host's own uses; the system gives those alone
    /// that are used.
    static constexpr std::size_t stackSize = 1024 * 1024;

    /// Begins with the next turn of the event loop.
    ///
    /// @param factory  called once, in a later turn; where it gives no line or no driver, the line
    ///                 is down for good
    explicit EventLoopService(LineFactory factory, const ServiceSettings &settings = {},
                              QObject *parent = nullptr);

    /// Bytes that the line has used of its stack at most; 0 before it began.
    std::size_t deepestStack() const;

private:
    const LoopPlace &m_place;
};

} // namespace dx4::host
