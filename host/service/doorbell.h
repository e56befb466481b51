// SPDX-License-Identifier: MIT
// A pause that another thread can end.
#pragma once

#include "host/line/line_settings.h"

#include <condition_variable>
#include <mutex>

namespace dx4::host {

/// Lets one thread wait and any other wake it. A ring that comes while nobody waits is kept for the
/// next wait; several count as one.
class Doorbell {
public:
    void ring();

    /// @return whether it rang before the time was over
    bool wait(Duration span);

private:
    std::mutex m_mutex;
    std::condition_variable m_rung;
    bool m_hasRung = false;
};

} // namespace dx4::host
