// SPDX-License-Identifier: MIT
// What handlers throw, kept until the call that led to them has done its work.
#pragma once

#include <exception>
#include <utility>

namespace dx4::host {

/// Keeps the exceptions of handlers out of the frames that call them: the driver's were made for
/// none, and those of the host have a request to bring to its end.
///
/// The first one leaves from the outermost public call, once that has done all of its work. Those
/// that handlers throw after it are dropped.
class HandlerErrors {
public:
    /// Calls a handler and keeps what it throws.
    template <typename Handler> void call(Handler handler)
    {
        try {
            handler();
        } catch (...) {
            keep();
        }
    }

    /// Does the work of a public call. The outermost of nested ones throws what was kept meanwhile.
    ///
    /// What the work throws by itself ends it at once; where a handler has thrown before, that
    /// handler's exception is the one that leaves.
    template <typename Work> void during(Work work)
    {
        const bool isOutermost = m_depth == 0;
        ++m_depth;
        try {
            work();
        } catch (...) {
            if (!isOutermost) {
                --m_depth;
                throw;
            }
            keep();
        }
        --m_depth;
        if (isOutermost && m_first)
            std::rethrow_exception(std::exchange(m_first, nullptr));
    }

private:
    void keep()
    {
        if (!m_first)
            m_first = std::current_exception();
    }

    std::exception_ptr m_first;
    int m_depth = 0; ///< of nested public calls
};

} // namespace dx4::host
