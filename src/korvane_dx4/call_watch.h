// SPDX-License-Identifier: MIT
// Notices calls that overlap.
#pragma once

namespace dx4 {

#ifdef KORVANE_WATCH_CALLS
/// Stands at the beginning of every entry point that touches the driver's state.
///
/// The driver takes one call at a time; what a callback calls on the same thread belongs to it. A
/// call from another thread meanwhile would damage the lists: the program is told which two calls
/// they are, on standard error, and ended.
class CallWatch {
public:
    /// @param call  name of the entry point; kept as a pointer
    explicit CallWatch(const char *call);
    ~CallWatch();
    CallWatch(const CallWatch &) = delete;
    CallWatch &operator=(const CallWatch &) = delete;

private:
    const char *m_outer; ///< the call that this one is made from; null for none
};
#else
/// Costs nothing; with -DKORVANE_WATCH_CALLS=ON, as in debug builds, it notices calls that overlap.
class CallWatch {
public:
    explicit constexpr CallWatch(const char *) { }
};
#endif

} // namespace dx4
