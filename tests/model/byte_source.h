// SPDX-License-Identifier: MIT
// Decisions drawn from a string of bytes, be it random or made by a fuzzer.
#pragma once

#include <cstddef>

namespace model {

/// What a play of bytes may cost: a full queue costs as much as hundreds of other operations.
enum class Effort { Small, Any };

/// Hands out the bytes of a buffer one after the other; behind its end there are zeros.
class ByteSource {
public:
    /// @param bytes  stays the caller's and must outlive the source
    /// @param effort  what the arguments that are drawn may cost
    ByteSource(const unsigned char *bytes, std::size_t size, Effort effort = Effort::Any)
        : m_next(bytes)
        , m_end(bytes + size)
        , m_effort(effort)
    {
    }

    /// False when runs of a hundred registers and more are to be left out.
    bool mayCostMuch() const { return m_effort == Effort::Any; }

    bool isEmpty() const { return m_next == m_end; }

    int byte() { return isEmpty() ? 0 : *m_next++; }

    /// 0 to `limit` - 1; `limit` is at least 1.
    int below(int limit) { return (limit > 256 ? byte() * 256 + byte() : byte()) % limit; }

    /// `low` to `high`, both included.
    int between(int low, int high) { return low + below(high - low + 1); }

    /// True once in `period` times.
    bool onceIn(int period) { return below(period) == period - 1; }

    /// One of the listed values.
    template <typename T, std::size_t size> const T &pick(const T (&values)[size])
    {
        return values[static_cast<std::size_t>(below(static_cast<int>(size)))];
    }

private:
    const unsigned char *m_next;
    const unsigned char *m_end;
    Effort m_effort;
};

} // namespace model
