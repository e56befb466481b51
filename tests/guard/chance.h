// SPDX-License-Identifier: MIT
// Where the choices of a random run come from: a seed, or the bytes of a fuzzer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

class Chance {
public:
    Chance() = default;
    virtual ~Chance() = default;
    Chance(const Chance &) = delete;
    Chance &operator=(const Chance &) = delete;

    /// A number from 0 to below - 1; `below` is at least 1.
    virtual unsigned pick(unsigned below) = 0;

    /// Whether something happens that does so in `perMille` of 1000 cases.
    virtual bool happens(unsigned perMille) { return perMille > 0 && pick(1000) < perMille; }
};

class SeededChance : public Chance {
public:
    explicit SeededChance(std::uint64_t seed)
        : m_engine(seed)
    {
    }
    unsigned pick(unsigned below) override { return static_cast<unsigned>(m_engine() % below); }

private:
    std::mt19937_64 m_engine;
};

/// Reads numbers off an input; all choices are the first one when it has ended, and nothing
/// happens.
class BytesChance : public Chance {
public:
    BytesChance(const unsigned char *bytes, std::size_t size)
        : m_next(bytes)
        , m_left(size)
    {
    }
    bool hasEnded() const { return m_left == 0; }
    unsigned pick(unsigned below) override
    {
        unsigned number = 0;
        for (unsigned span = 1; span < below && m_left > 0; span *= 256, ++m_next, --m_left)
            number = number * 256 + *m_next;
        return number % below;
    }

    /// One byte each, however rare it is meant to be: what happens is for the input to say.
    bool happens(unsigned perMille) override { return perMille > 0 && pick(256) >= leastToHappen; }

private:
    static constexpr unsigned leastToHappen = 224;

    const unsigned char *m_next;
    std::size_t m_left;
};
