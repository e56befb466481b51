// SPDX-License-Identifier: MIT
// A function with a stack of its own, which can be left in its midst and gone on with.
#pragma once

#include <boost/context/fiber.hpp>
#include <boost/context/stack_context.hpp>

#include <cstddef>
#include <exception>
#include <functional>

namespace dx4::host {

/// Runs a function on a stack of its own, on the thread of its owner, in stretches: the owner
/// resumes it, and it suspends itself.
///
/// The stack ends in a page that nobody may touch: a function that needs more of it ends the
/// program there, and overwrites nothing.
///
/// C++ keeps one list of the exceptions that are being handled for each thread: the function may
/// throw and catch as it likes, but does not suspend itself within a catch block.
class Fiber {
public:
    /// Throws std::bad_alloc where there is no room for the stack.
    ///
    /// @param run        begins with the first resume()
    /// @param stackSize  bytes; the system gives those alone that are used
    Fiber(std::function<void()> run, std::size_t stackSize);

    /// Unwinds a function that has not ended: its suspend() throws, until it lets that pass.
    ~Fiber();
    Fiber(const Fiber &) = delete;
    Fiber &operator=(const Fiber &) = delete;

    /// Runs the function until it suspends itself or ends; it has not ended yet, and is not
    /// running. Throws what the function threw.
    void resume();

    /// Called by the function: goes on where it was resumed, and returns with the next resume().
    void suspend();

    bool isRunning() const { return m_isRunning; }
    bool hasEnded() const { return m_hasEnded; }

    /// Bytes of the stack that have been used at most; 0 when the function has ended.
    std::size_t deepest() const;

private:
    class Stack;
    class Unwinding { };
    /// A side of the switch as AddressSanitizer knows it.
    struct Side {
        void *fakeStack = nullptr;
        const void *bottom = nullptr; ///< lowest address
        std::size_t size = 0;
    };

    boost::context::fiber runWhole(boost::context::fiber &&owner);
    void cross(Side &from, const Side &to);
    static void announce(Side &from, const Side &to);
    void arrive(const Side &at);

    std::function<void()> m_run;
    boost::context::stack_context
        m_stack; ///< with its guard page; gone when the function has ended
    boost::context::fiber m_other; ///< the side that is not running
    Side m_ownerSide;
    Side m_ownSide;
    std::exception_ptr m_error; ///< thrown by the function
    bool m_isRunning = false;
    bool m_hasEnded = false;
    bool m_isUnwinding = false;
};

} // namespace dx4::host
