// SPDX-License-Identifier: MIT
// A station that answers what a test tells it to, right or wrong.
#include "fake_station.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int lookAgainAfter = 20; // ms
constexpr int requestEndsAfter = 5; // ms without a byte
constexpr std::size_t shortestRequest = 8;

std::string withCrc(std::string bytes)
{
    unsigned crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xA001U : crc >> 1U;
    }
    bytes += static_cast<char>(crc & 0xFFU);
    bytes += static_cast<char>(crc >> 8U);
    return bytes;
}

std::string bytesOf(const std::string &text)
{
    std::istringstream words(text);
    std::string word;
    std::string bytes;
    while (words >> word) {
        if (word == "CRC")
            return withCrc(bytes);
        bytes += static_cast<char>(std::stoi(word, nullptr, 16));
    }
    return bytes;
}

} // namespace

FakeStation::FakeStation()
    : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    grantpt(m_master);
    unlockpt(m_master);
    m_device = ptsname(m_master);
    termios raw {};
    tcgetattr(m_master, &raw);
    cfmakeraw(&raw);
    tcsetattr(m_master, TCSANOW, &raw);
}

FakeStation::~FakeStation()
{
    m_ends = true;
    if (m_thread.joinable())
        m_thread.join();
    if (m_master >= 0)
        close(m_master);
}

void FakeStation::answer(const std::string &reply)
{
    const std::string bytes = bytesOf(reply);
    m_replies[static_cast<unsigned char>(bytes.at(1)) & 0x7FU] = bytes;
}

void FakeStation::start()
{
    m_thread = std::thread([this] { serve(); });
}

void FakeStation::serve()
{
    while (!m_ends)
        serveOne();
}

/// Takes one request, if there is one.
void FakeStation::serveOne()
{
    std::string request;
    std::array<char, 256> part {};
    pollfd watched { m_master, POLLIN, 0 };
    while (poll(&watched, 1, request.empty() ? lookAgainAfter : requestEndsAfter) > 0) {
        const ssize_t count = read(m_master, part.data(), part.size());
        if (count <= 0) { // nobody has opened the device
            usleep(1000);
            break;
        }
        request.append(part.data(), static_cast<std::size_t>(count));
    }
    if (request.size() < shortestRequest)
        return;
    ++m_heard[static_cast<unsigned char>(request.at(1)) & 0x7FU];
    if (m_answers == m_breakAfter) {
        m_ends = true;
        close(m_master);
        m_master = -1;
        return;
    }
    const auto reply = m_replies.find(static_cast<unsigned char>(request.at(1)));
    if (reply == m_replies.end())
        return;
    const std::string &bytes = reply->second;
    if (write(m_master, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()))
        ++m_answers;
}
