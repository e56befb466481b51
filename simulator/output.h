// SPDX-License-Identifier: MIT
// A stream that holds up nobody and loses nothing without a word.
#pragma once

#include "common/output_stream.h"

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>

namespace dx4::sim {

/// Writes to a descriptor over a thread of its own: a reader who does not read is no reason to take
/// the drives off the line, nor is a full disk. What the descriptor does not take is bounded; what
/// was passed over is told once it takes again. When a write fails that is said on standard error,
/// once, and nothing more is written there.
class Output {
public:
    /// Creates or empties a file; a pipe without a reader is opened too. Throws std::system_error.
    explicit Output(const std::string &path);

    /// Takes a descriptor that stays open. @param name  for messages
    Output(int descriptor, std::string name);

    ~Output(); ///< as finish()
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /// Each flush hands on what was written since the last one, as a whole or not at all.
    std::ostream &stream() { return m_stream; }

    /// What stands in place of pieces that were passed over: a text with their number, or nothing,
    /// and then they are told on standard error.
    void tellGapsAs(std::function<std::string(int)> text);

    /// Called, on another thread, when not even the first piece could be written; `hear` may be
    /// called until the program ends.
    void onNothingWritten(std::function<void()> hear);

    /// Gives what waits a moment to be taken or refused.
    void settle();

    /// The same at the end; says what was not taken.
    void finish();

    /// Whether something could not be written, as far as is known. A reader of the standard output
    /// who has gone, or does not read, does not count: it had enough.
    bool lostSomething() const;

private:
    /// Collects up to the next flush.
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(common::OutputStream &stream)
            : m_stream(stream)
        {
        }

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char *text, std::streamsize count) override;
        int sync() override;

    private:
        common::OutputStream &m_stream;
        std::string m_waiting;
    };

    Output(int descriptor, std::string name, bool isFile);
    void listen(std::function<void()> hear);

    const std::string m_name;
    const int m_descriptor;
    const bool m_isFile;
    common::OutputStream &m_writer; ///< left to its thread, which may be held for ever
    Buffer m_buffer;
    std::ostream m_stream;
    bool m_isFinished = false;
    bool m_wasCut = false; ///< something waited still at the end
};

} // namespace dx4::sim
