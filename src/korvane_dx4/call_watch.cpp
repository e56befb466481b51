// SPDX-License-Identifier: MIT
// Notices calls that overlap.
#include "korvane_dx4/call_watch.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace dx4 {
namespace {

std::mutex mutex; // of the two below
std::thread::id owner; // the thread inside the driver
const char *running = nullptr; // its innermost call; null when nobody is inside

} // namespace

CallWatch::CallWatch(const char *call)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const std::thread::id self = std::this_thread::get_id();
    if (running && owner != self) {
        std::fprintf(stderr,
                     "korvane_dx4: %s was called while %s ran on another thread; the driver takes "
                     "one call at a time\n",
                     call, running);
        std::abort();
    }
    owner = self;
    m_outer = running;
    running = call;
}

CallWatch::~CallWatch()
{
    const std::lock_guard<std::mutex> lock(mutex);
    running = m_outer;
}

} // namespace dx4
