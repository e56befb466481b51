// SPDX-License-Identifier: MIT
// Bytes that pass for a frame though nobody sent one.
#pragma once

#include <QByteArray>

#include <array>
#include <vector>

/// Follows what a master hears and tells when bytes of several origins, or of none, make up a frame
/// of a station with the right CRC. One in 65,536 pieces of noise that begin like a frame does, and
/// a fuzzer finds them. No rule can tell such a frame from a sent one, so that it says nothing of
/// the rules: who plays the line leaves it out.
class Forgery {
public:
    /// Bytes are about to follow.
    ///
    /// @param isFrame  they are a whole frame, as somebody sent it
    /// @return false when they complete a forged frame; they have to be left out
    bool admits(const QByteArray &bytes, bool isFrame);

private:
    /// What may be the beginning of a frame.
    struct Start {
        explicit Start(bool isOfSent)
            : isSent(isOfSent)
        {
        }
        void add(int byte);
        bool mayGoOn() const;
        bool isWhole() const;

        unsigned crc = 0xFFFF;
        int length = 0;
        std::array<int, 3> head {}; ///< its first bytes
        bool isSent; ///< it is the beginning of what somebody sends
    };

    std::vector<Start> m_starts;
};
