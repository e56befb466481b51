// SPDX-License-Identifier: MIT
// A station that answers what a test tells it to, right or wrong.
#pragma once

#include <array>
#include <atomic>
#include <map>
#include <string>
#include <thread>

/// Sits at the far end of a pseudo-terminal. Requests without an answer of their function are left
/// unanswered.
class FakeStation {
public:
    FakeStation();
    ~FakeStation();
    FakeStation(const FakeStation &) = delete;
    FakeStation &operator=(const FakeStation &) = delete;

    /// Answers every request of the reply's function with these bytes: "01 03 02 00 11 CRC". Before
    /// start().
    void answer(const std::string &reply);

    /// Goes away with the request that follows so many answers. Before start().
    void breakAfter(int answers) { m_breakAfter = answers; }
    void start();

    /// Requests of this function that came so far.
    int heard(int function) const { return m_heard[static_cast<std::size_t>(function)]; }

    /// The device to open.
    const std::string &device() const { return m_device; }

private:
    void serve();
    void serveOne();

    int m_master = -1;
    int m_breakAfter = -1; // never
    int m_answers = 0;
    std::string m_device;
    std::map<unsigned char, std::string> m_replies; // by function
    std::array<std::atomic<int>, 128> m_heard {}; // by function
    std::atomic<bool> m_ends { false };
    std::thread m_thread;
};
