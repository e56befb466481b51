// SPDX-License-Identifier: MIT
// A stream that loses nothing without a word.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace dx4::sim {

/// Opens nothing in place of standard streams that the caller has closed. Without it the device
/// would be given the number of one of them, and hear what is meant for the user.
void holdStandardStreams();

/// Writes to a descriptor. When that fails it is said on standard error, once, and nothing more is
/// written there: a full disk is no reason to take the drives off the line.
class Output {
public:
    /// Creates or empties a file. Throws std::system_error.
    explicit Output(const std::string &path);

    /// Takes a descriptor that stays open. @param name  for messages
    Output(int descriptor, std::string name);

    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /// Nothing is written before the stream is flushed.
    std::ostream &stream() { return m_stream; }

    /// Whether something could not be written. A reader of the standard output who has gone does
    /// not count: it had enough.
    bool lostSomething() const;

private:
    class Buffer : public std::streambuf {
    public:
        Buffer(int descriptor, std::string name);
        int descriptor() const { return m_descriptor; }
        int error() const { return m_error; }

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char *text, std::streamsize count) override;
        int sync() override;

    private:
        int m_descriptor;
        std::string m_name;
        std::string m_waiting;
        int m_error = 0; ///< errno of the first write that failed
    };

    bool m_isFile;
    Buffer m_buffer;
    std::ostream m_stream;
};

} // namespace dx4::sim
