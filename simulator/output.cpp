// SPDX-License-Identifier: MIT
// A stream that holds up nobody and loses nothing without a word.
#include "simulator/output.h"

#include "simulator/talk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace dx4::sim {

namespace {

using common::OutputStream;

constexpr int fileMode = 0666; // less what the user's mask takes away
constexpr auto lastPatience = std::chrono::milliseconds(100); // without a byte taken
constexpr auto longestEnd = std::chrono::seconds(1); // for a reader who takes it bit by bit

bool isPipe(const std::string &path)
{
    struct stat status { };
    return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

int openFile(const std::string &path)
{
    // A pipe open both ways needs no reader to be opened, and outlives the one that it has.
    const int access = isPipe(path) ? O_RDWR : O_WRONLY | O_CREAT | O_TRUNC;
    const int descriptor = open(path.c_str(), access | O_CLOEXEC | O_NOCTTY, fileMode);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), path);
    return descriptor;
}

/// A part of a piece at the end would make a capture unreadable.
void cutOff(int descriptor, std::uint64_t length)
{
    struct stat status { };
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        [[maybe_unused]] const int result = ftruncate(descriptor, static_cast<off_t>(length));
    }
}

} // namespace

Output::Output(int descriptor, std::string name, bool isFile)
    : m_name(std::move(name))
    , m_descriptor(descriptor)
    , m_isFile(isFile)
    , m_writer(*new OutputStream(descriptor))
    , m_buffer(m_writer)
    , m_stream(&m_buffer)
{
    listen([] {});
    tellGapsAs([](int) { return std::string(); });
}

Output::Output(const std::string &path)
    : Output(openFile(path), path, true)
{
}

Output::Output(int descriptor, std::string name)
    : Output(descriptor, std::move(name), false)
{
}

Output::~Output()
{
    finish();
}

void Output::tellGapsAs(std::function<std::string(int)> text)
{
    m_writer.tellGapsAs([name = m_name, text = std::move(text)](int count) {
        std::string inPlace = text(count);
        if (inPlace.empty())
            say(name + ": " + std::to_string(count) + " frames not written");
        return inPlace;
    });
}

void Output::onNothingWritten(std::function<void()> hear)
{
    listen(std::move(hear));
}

void Output::listen(std::function<void()> hear)
{
    m_writer.onFailure([name = m_name, descriptor = m_descriptor, isFile = m_isFile,
                        hear = std::move(hear)](const OutputStream::Failure &failure) {
        if (isFile)
            cutOff(descriptor, failure.wholeBytes);
        say(name + ": " + std::generic_category().message(failure.error)
            + "; nothing more is written there");
        if (failure.wholeBytes == 0)
            hear();
    });
}

void Output::settle()
{
    m_stream.flush();
    m_writer.drain(0, longestEnd);
}

void Output::finish()
{
    if (std::exchange(m_isFinished, true))
        return;
    m_stream.flush();
    const auto begin = std::chrono::steady_clock::now();
    auto since = begin;
    int waiting = m_writer.waiting();
    const bool isTaken = m_writer.drain(0, [&] {
        const auto now = std::chrono::steady_clock::now();
        if (m_writer.waiting() != waiting)
            since = now;
        waiting = m_writer.waiting();
        return now - since > lastPatience || now - begin > longestEnd;
    });
    if (isTaken)
        return;
    m_wasCut = true;
    const int untold = m_writer.untold();
    say(m_name + ": its reader did not take the last " + std::to_string(m_writer.waiting())
        + " bytes" + (untold > 0 ? ", and " + std::to_string(untold) + " pieces behind them" : ""));
}

bool Output::lostSomething() const
{
    const int error = m_writer.error();
    if (!m_isFile)
        return error != 0 && error != EPIPE;
    return error != 0 || m_wasCut || m_writer.passedOver() > 0;
}

Output::Buffer::int_type Output::Buffer::overflow(int_type character)
{
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        m_waiting += traits_type::to_char_type(character);
    return traits_type::not_eof(character);
}

std::streamsize Output::Buffer::xsputn(const char *text, std::streamsize count)
{
    m_waiting.append(text, static_cast<std::size_t>(count));
    return count;
}

int Output::Buffer::sync()
{
    m_stream.putOrCount(std::exchange(m_waiting, {}));
    return 0;
}

} // namespace dx4::sim
