// SPDX-License-Identifier: MIT
// The only seam between the host and the outside: bytes out, bytes in, and a clock.
#pragma once

#include "host/line/waits.h"

#include <QByteArray>
#include <QString>

namespace dx4::host {

/// A half-duplex line with a clock of its own, so that time can be played in tests.
///
/// All calls come from one thread. A line that breaks closes itself: the call that noticed reports
/// failure, and isOpen() is false from then on until open() succeeds.
///
/// A line that waits for anything but its own clock does so through the Waits that it is given, so
/// that it can be run where nothing may block.
class Line {
public:
    Line() = default;
    virtual ~Line() = default;
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    /// Opens the line; an open line stays as it is.
    ///
    /// @param error  out: which device and why not; may be null
    virtual bool open(QString *error) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;

    /// Settings that the line was made with.
    virtual const LineSettings &settings() const = 0;

    /// The line's clock.
    virtual Duration now() const = 0;

    /// Hands all bytes to the line; they may still be on their way when it returns.
    ///
    /// @return false when the line is closed or broke
    virtual bool send(const QByteArray &bytes) = 0;

    /// Waits for `count` bytes, no longer than until the moment `deadline`.
    ///
    /// @return the bytes that came, never more than `count`; fewer at the deadline or when the line
    ///         broke. Bytes beyond stay in the line
    virtual QByteArray receive(int count, Duration deadline) = 0;

    /// Drops what has arrived and was not received.
    ///
    /// @return number of bytes dropped
    virtual int discardInput() = 0;

    /// Waits until nothing was sent or has arrived for `gap`; drops what arrives meanwhile.
    ///
    /// @return false when the line was not silent for that long before `deadline`
    virtual bool awaitSilence(Duration gap, Duration deadline) = 0;

    /// How the line is to wait from now on; blockingWaits() before. A line that passes its calls on
    /// passes this on as well, and one in memory has no use for it.
    ///
    /// @param waits  outlives the line
    virtual void setWaits(Waits &waits) { static_cast<void>(waits); }
};

} // namespace dx4::host
