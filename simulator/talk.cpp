// SPDX-License-Identifier: MIT
// What dx4-sim says of itself, on standard error.
#include "simulator/talk.h"

#include "common/output_stream.h"

#include <unistd.h>

#include <chrono>

namespace dx4::sim {

namespace {

constexpr int mostWaiting = 16384; // bytes
constexpr auto patience = std::chrono::milliseconds(100);

common::OutputStream &talk()
{
    static auto *const stream = [] {
        auto *const made = new common::OutputStream(STDERR_FILENO, mostWaiting);
        made->tellGapsAs([](int count) {
            return "dx4-sim: " + std::to_string(count) + " messages not shown\n";
        });
        return made;
    }();
    return *stream;
}

} // namespace

void say(const std::string &text)
{
    talk().putOrCount("dx4-sim: " + text + '\n');
}

void settleTalk()
{
    talk().drain(0, patience);
}

} // namespace dx4::sim
