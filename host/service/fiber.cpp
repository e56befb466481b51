// SPDX-License-Identifier: MIT
// A function with a stack of its own, which can be left in its midst and gone on with.
#include "host/service/fiber.h"

#include <boost/context/protected_fixedsize_stack.hpp>

#include <algorithm>
#include <memory>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define KORVANE_WATCHED_STACKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVANE_WATCHED_STACKS 1
#endif
#endif

#ifdef KORVANE_WATCHED_STACKS
#include <sanitizer/common_interface_defs.h>
#endif

namespace dx4::host {
namespace {

using boost::context::protected_fixedsize_stack;
using boost::context::stack_context;

/// Bytes from the first one that is not zero, as the system hands a stack out, to the end.
///
/// Reads what nobody has a variable in.
[[gnu::no_sanitize_address]] std::size_t lengthFromFirstUsed(const char *first, const char *end)
{
    while (first != end && *first == 0)
        ++first;
    return static_cast<std::size_t>(end - first);
}

} // namespace

/// Makes the stack and tells the fiber of it.
class Fiber::Stack : public protected_fixedsize_stack {
public:
    Stack(std::size_t size, stack_context &made)
        : protected_fixedsize_stack(size)
        , m_made(made)
    {
    }

    stack_context allocate()
    {
        m_made = protected_fixedsize_stack::allocate();
        return m_made;
    }

private:
    stack_context &m_made;
};

Fiber::Fiber(std::function<void()> run, std::size_t stackSize)
    : m_run(std::move(run))
    , m_other(std::allocator_arg, Stack(stackSize, m_stack),
              [this](boost::context::fiber &&owner) { return runWhole(std::move(owner)); })
{
    m_ownSide.bottom = static_cast<const char *>(m_stack.sp) - m_stack.size;
    m_ownSide.size = m_stack.size;
}

Fiber::~Fiber()
{
    m_isUnwinding = true;
    while (!m_hasEnded) {
        try {
            resume();
        } catch (...) {
            continue; // of a function that nobody has an interest in any more
        }
    }
}

void Fiber::resume()
{
    m_isRunning = true;
    cross(m_ownerSide, m_ownSide);
    m_isRunning = false;
    if (m_error)
        std::rethrow_exception(std::exchange(m_error, nullptr));
}

void Fiber::suspend()
{
    cross(m_ownSide, m_ownerSide);
    if (m_isUnwinding)
        throw Unwinding {};
}

boost::context::fiber Fiber::runWhole(boost::context::fiber &&owner)
{
    m_other = std::move(owner);
    arrive(m_ownSide);
    try {
        if (!m_isUnwinding)
            m_run();
    } catch (const Unwinding &) {
        // as the owner wants it
    } catch (...) {
        m_error = std::current_exception();
    }
    m_hasEnded = true;
    announce(m_ownSide, m_ownerSide);
    return std::move(m_other);
}

/// Goes on with the other side, and returns when that one crosses back.
void Fiber::cross(Side &from, const Side &to)
{
    announce(from, to);
    m_other = std::move(m_other).resume();
    arrive(from);
}

/// Tells the sanitizer that the stack of another side is about to be used.
void Fiber::announce([[maybe_unused]] Side &from, [[maybe_unused]] const Side &to)
{
#ifdef KORVANE_WATCHED_STACKS
    __sanitizer_start_switch_fiber(&from.fakeStack, to.bottom, to.size);
#endif
}

/// Tells the sanitizer whose stack is used by now, and learns what it knows of the one before.
void Fiber::arrive(const Side &at)
{
#ifdef KORVANE_WATCHED_STACKS
    Side &before = &at == &m_ownSide ? m_ownerSide : m_ownSide;
    __sanitizer_finish_switch_fiber(at.fakeStack, &before.bottom, &before.size);
#else
    static_cast<void>(at);
#endif
}

std::size_t Fiber::deepest() const
{
    if (m_hasEnded)
        return 0;
    const auto *end = static_cast<const char *>(m_stack.sp);
    const char *guard = end - m_stack.size;
    return lengthFromFirstUsed(guard + protected_fixedsize_stack::traits_type::page_size(), end);
}

} // namespace dx4::host
