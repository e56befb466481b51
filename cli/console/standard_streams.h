// SPDX-License-Identifier: MIT
// Standard output and standard error, written without holding up the line.
//
// Nothing here waits for a reader while a line is polled: bytes go to a thread per stream, which
// may be held in its write. Views ask outputFlows() before they build lines and keep what is new
// until it says yes, so that what waits stays small and is not old. Commands that answer once have
// to say all of it: where that is more than OutputStream takes they wait for the reader, until a
// signal.
#pragma once

#include <QString>

namespace dx4::cli {

/// Writes text as UTF-8 whatever the locale, and hands it on at once.
void writeText(const QString &text);

/// Whether what is written is taken as it comes. Where it is not, a view keeps its news back.
bool outputFlows();

/// Whether everything written so far was taken.
bool outputIsTaken();

/// Writes to standard error, behind what standard output was given before. What has no room there
/// is counted, which is told as soon as there is.
void writeTalk(const QString &text);

/// The same for a frame of a trace, of which there are many: waits for neither stream, and from
/// the first one on the order between the streams is not kept. While standard error does not take
/// them as they come they are counted, and told when it does.
void writeTrace(const QString &line);

/// Gives both streams a moment to take what waits: the program is about to be stopped.
void settleStreams();

/// Waits until both streams have taken everything. Comes last, when no line is open: without a
/// signal it waits as long as the reader takes; after one, while the reader goes on reading. A
/// signal that comes meanwhile ends it.
///
/// @param exitCode  of the command so far
/// @return the exit code, 130 in place of 0 where a signal ended the wait
int finishOutput(int exitCode);

/// Why not all of the data arrived, as on a full disk; empty where it did. A reader who has gone
/// is no loss: it had enough.
QString outputLoss();

} // namespace dx4::cli
