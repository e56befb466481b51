// SPDX-License-Identifier: MIT
// What a command prints.
#include "command_output.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

std::vector<std::string> linesOf(const std::string &command)
{
    FILE *pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) {
        std::perror(command.c_str());
        std::abort();
    }
    std::string output;
    std::array<char, 4096> chunk;
    while (const std::size_t length = fread(chunk.data(), 1, chunk.size(), pipe))
        output.append(chunk.data(), length);
    pclose(pipe);

    std::vector<std::string> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}
