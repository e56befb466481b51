// SPDX-License-Identifier: MIT
// The loop of the commands that poll: until enough, until Ctrl-C, and through a line that breaks.
#pragma once

#include "cli/line/session.h"

#include <functional>

namespace dx4::cli {

/// Why a loop ended.
enum class PollEnd {
    Enough,
    Asked, ///< Ctrl-C, or the reader has gone
    LineGone, ///< the line broke and did not come back in time
    OutputLost, ///< what is read cannot be written, as outputLoss() tells
};

struct PollSettings {
    std::function<bool()> enough; ///< asked before each step

    /// Time until the next step is due, asked before each one; null: steps follow at once.
    std::function<host::Duration()> rest;
    std::function<void()> afterStep; ///< also called while the loop rests; may be null

    /// Told when the line broke and when it is back; null: noted on standard error.
    std::function<void(const QString &)> onLine;
    std::optional<host::Duration> patience; ///< with a broken line; nothing: without end
};

/// Adds --reconnect, and says in the help how such a command ends.
///
/// @param seconds  set to -1, which stands for "not given"
void addPollOptions(Command &command, int &seconds);

/// The patience that --reconnect asks for; without it, 10 s for a command that has an end of its
/// own and no limit for one that runs until Ctrl-C.
std::optional<host::Duration> patienceOf(int seconds, bool hasEnd);

/// The code of a command whose loop ended so, and says what is wrong with it. Ended by hand, one
/// that has an end of its own says that it was not done; one that runs until Ctrl-C was. A reader
/// who has gone had enough.
///
/// @param wish     what should have come back at least once, "read"; null: nothing
/// @param stopped  whether a stop that was due was confirmed
int codeOfEnd(Session &session, PollEnd end, bool hasEnd, const char *wish, bool stopped);

/// Steps the session's runtime.
PollEnd poll(Session &session, const PollSettings &settings);

/// Reads that have ended: answered, given up, or passed over as their station is left alone.
qint64 endedReads(const host::CounterSet &counters);

} // namespace dx4::cli
