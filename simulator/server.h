// SPDX-License-Identifier: MIT
// The loop of dx4-sim: port, commands, signals and time.
#pragma once

#include "simulator/cable.h"
#include "simulator/commands.h"
#include "simulator/end_request.h"
#include "simulator/framer.h"
#include "simulator/port.h"

#include <string>

namespace dx4::sim {

/// Serves a port until it is told to end. One thread; waits in one place.
class Server {
public:
    /// All must outlive it.
    Server(Port &port, Cable &cable, Commands &commands, const Clock &clock, EndRequest &end);

    /// Serves until the end is asked for or the command "quit" comes. The end of standard input
    /// only ends the commands. Throws std::system_error when the port is gone.
    void run();

private:
    void passTime();
    void suspend();
    void wait();
    void servePort();
    void serveCommands();

    Port &m_port;
    Cable &m_cable;
    Commands &m_commands;
    const Clock &m_clock;
    EndRequest &m_end;
    Framer m_framer;
    std::string m_typed; ///< begin of a command line
    bool m_isTooLong = false; ///< the line that is being typed; its begin was dropped
    Micros m_timePassed { 0 }; ///< for the drives, without a request
    bool m_portReady = false;
    bool m_inputReady = false;
    bool m_inputOpen = true;
    bool m_quit = false;
};

} // namespace dx4::sim
