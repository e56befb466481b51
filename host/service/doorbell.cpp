// SPDX-License-Identifier: MIT
// A pause that another thread can end.
#include "host/service/doorbell.h"

#include <utility>

namespace dx4::host {

void Doorbell::ring()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_hasRung = true;
    }
    m_rung.notify_one();
}

bool Doorbell::wait(Duration span)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_rung.wait_for(lock, span, [this] { return m_hasRung; });
    return std::exchange(m_hasRung, false);
}

} // namespace dx4::host
