// SPDX-License-Identifier: MIT
// A stream that loses nothing without a word.
#include "simulator/output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <system_error>
#include <utility>

namespace dx4::sim {

namespace {

constexpr int fileMode = 0666; // less what the user's mask takes away

int openFile(const std::string &path)
{
    const int descriptor =
        open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, fileMode);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), path);
    return descriptor;
}

/// Writes all of it; gives the reason in errno when that fails.
bool writeAll(int descriptor, const std::string &text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        done += static_cast<std::size_t>(count > 0 ? count : 0);
    }
    return true;
}

} // namespace

void holdStandardStreams()
{
    // open() gives the lowest free number. What is written there is refused, which is noticed.
    for (const int stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO }) {
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDONLY);
    }
}

Output::Output(const std::string &path)
    : m_isFile(true)
    , m_buffer(openFile(path), path)
    , m_stream(&m_buffer)
{
}

Output::Output(int descriptor, std::string name)
    : m_isFile(false)
    , m_buffer(descriptor, std::move(name))
    , m_stream(&m_buffer)
{
}

Output::~Output()
{
    m_stream.flush();
    if (m_isFile)
        close(m_buffer.descriptor());
}

bool Output::lostSomething() const
{
    const bool readerGone = !m_isFile && m_buffer.error() == EPIPE;
    return m_buffer.error() != 0 && !readerGone;
}

Output::Buffer::Buffer(int descriptor, std::string name)
    : m_descriptor(descriptor)
    , m_name(std::move(name))
{
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
    const std::string text = std::exchange(m_waiting, {});
    if (m_error == 0 && !writeAll(m_descriptor, text)) {
        m_error = errno;
        std::cerr << "dx4-sim: " << m_name << ": " << std::generic_category().message(m_error)
                  << "; nothing more is written there\n";
    }
    return m_error == 0 ? 0 : -1;
}

} // namespace dx4::sim
