// SPDX-License-Identifier: MIT
// Work that may wait for a disk, beside the thread of the window.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <optional>

namespace dx4::panel {

/// One piece of work at a time. Its end is waited for where this is destroyed.
template <typename Result> class AsyncWork {
public:
    bool isBusy() const { return m_result.valid(); }

    /// Begins; nothing may be under way.
    void begin(std::function<Result()> work)
    {
        m_result = std::async(std::launch::async, std::move(work));
    }

    /// The result, once, when it is there.
    std::optional<Result> take()
    {
        const bool isThere = m_result.valid()
            && m_result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        return isThere ? std::optional<Result>(m_result.get()) : std::nullopt;
    }

    /// Waits until take() has something, if anything is under way.
    void wait() const
    {
        if (m_result.valid())
            m_result.wait();
    }

private:
    std::future<Result> m_result;
};

} // namespace dx4::panel
