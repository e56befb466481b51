// SPDX-License-Identifier: MIT
// dx4-sim on a pseudo-terminal of its own, for masters that open a device.
#pragma once

#include "child_process.h"

#include <string>
#include <vector>

/// A running dx4-sim.
class ServedLine {
public:
    /// Starts it with --pty and these arguments and waits for the device's path.
    explicit ServedLine(std::vector<std::string> arguments = {})
        : process(commandOf(std::move(arguments)))
        , firstLine(process.readLine())
        , device(deviceIn(firstLine))
    {
    }

    /// Runs a command of its standard input; gives the line it answers.
    std::string command(const std::string &line)
    {
        process.writeLine(line);
        return process.readLine();
    }

    /// Ends it; gives its exit code.
    int quit()
    {
        process.writeLine("quit");
        return process.wait();
    }

    ChildProcess process;
    std::string firstLine;
    std::string device; ///< path for the master to open

private:
    /// The path in either form of the first line; "" when the program did not come up.
    static std::string deviceIn(const std::string &line)
    {
        const std::size_t begin = line.find('/');
        return begin == std::string::npos ? std::string()
                                          : line.substr(begin, line.find('"', begin) - begin);
    }

    static std::vector<std::string> commandOf(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), { SIMULATOR_FILE, "--pty" });
        return arguments;
    }
};
