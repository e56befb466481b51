// SPDX-License-Identifier: MIT
// What a command prints.
#pragma once

#include <string>
#include <vector>

/// Lines that `command` prints to its standard output and error; ends the test program when it
/// cannot be run.
std::vector<std::string> linesOf(const std::string &command);
