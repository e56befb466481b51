// SPDX-License-Identifier: MIT
// The tool on a bench: a simulated inverter, a folder of its own, and shell commands.
#pragma once

#include "child_process.h"
#include "fake_station.h"

#include <memory>
#include <string>
#include <vector>

/// What a shell command printed.
struct Printed {
    std::string out;
    std::string err;
    int code = 0;
};

/// Text of a file; empty when there is none.
std::string contentOf(const std::string &path);

/// Starts a simulator on first use and runs commands in an empty folder, with `dx4` on PATH and
/// DX4_PORT naming the simulator's device.
class Bench {
public:
    Bench();
    ~Bench();
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

    /// Starts the simulator. @param stations  between commas
    void serve(const std::string &stations);

    /// Takes the simulator away: its end of the line closes.
    void unplug() { m_simulator.reset(); }

    /// Puts a station in its place that gives these answers, each as FakeStation::answer() takes
    /// it, and goes away after `breakAfter` of them; -1: never.
    void fake(const std::vector<std::string> &answers, int breakAfter = -1);

    /// A command to the simulator; gives its answer.
    std::string tell(const std::string &command);

    /// Runs a shell command.
    Printed run(const std::string &command);

    /// What the completion for bash makes of the last word of a line, a candidate a line.
    std::string complete(const std::string &typed);

    /// The words to start a shell command in the bench's environment.
    ///
    /// @param settings  further variables of the environment, in place of NO_COLOR=1
    std::vector<std::string> shell(const std::string &command,
                                   const std::string &settings = "NO_COLOR=1") const;

    /// Waits until the station of fake() has heard so many requests of a function.
    ///
    /// @return whether it has before half a minute is over
    bool awaitRequests(int function, int count) const;

    /// Waits until the tool says that nobody holds the port.
    ///
    /// @return whether it has before half a minute is over
    bool awaitFreePort();

    const std::string &device() const { return m_device; }
    const std::string &folder() const { return m_folder; }

private:
    std::string m_folder;
    std::string m_device;
    std::unique_ptr<ChildProcess> m_simulator;
    std::unique_ptr<FakeStation> m_fake;
};
