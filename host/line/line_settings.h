// SPDX-License-Identifier: MIT
// How a serial line is set, and the times that follow from it.
#pragma once

#include <QString>

#include <chrono>

namespace dx4::host {

/// Spans of time. A moment is the span since the zero of the line's own clock.
using Duration = std::chrono::microseconds;

enum class Parity { None, Even, Odd };

/// Whether the adapter gives every request back to its sender.
enum class EchoMode {
    Auto, ///< found out from replies that cannot be mistaken for it
    Yes, ///< always: a write is confirmed by a second copy alone
    No, ///< never: the first copy of a write is its reply
};

/// How long the silence between two frames is.
enum class GapRule {
    Standard, ///< 3.5 characters, fixed at 1.75 ms above 19200 bit/s, as the serial guide advises
    Characters, ///< 3.5 characters at any speed: for stations known to listen again so soon
};

/// Settings of one line; data bits are always 8, as Modbus RTU has them.
struct LineSettings {
    QString port; ///< device path, lasting name ("usb-...") or a name as the system lists it
    int speed = 9600; ///< bit/s
    Parity parity = Parity::None;
    int stopBits = 1; ///< 1 or 2
    Duration responseTimeout = std::chrono::milliseconds(300); ///< end of request to first byte
    GapRule gap = GapRule::Standard;
    EchoMode echo = EchoMode::Auto;
    bool kernelSwitchesDirection = false; ///< RS-485 driver switched by the kernel over RTS
    bool isShared = false; ///< opened also where another program has the port open without a lock

    /// Time of one character: start bit, 8 data bits, parity and stop bits; rounded up, as all
    /// times here.
    Duration characterTime() const;

    /// Time of `bytes` characters back to back; may be less than so many characterTime().
    Duration wireTime(int bytes) const;

    /// Silence that separates two frames, by the rule of `gap`.
    Duration silentGap() const;
};

} // namespace dx4::host
