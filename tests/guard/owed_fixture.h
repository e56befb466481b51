// SPDX-License-Identifier: MIT
// A ledger of what is owed, with requests and replies that are told from each other or are not.
#pragma once

#include "asked.h"
#include "host/exchange/owed_replies.h"

#include <gtest/gtest.h>

inline const FRAME_PRO statusOfTwo = asked("02 03 20 00 00 01");
inline constexpr char replyOfTwo[] = "01 03 04 12 34 56 78"; // to A or B
inline constexpr char replyOfThree[] = "01 03 06 00 01 00 02 00 03";
inline constexpr char replyOfStationTwo[] = "02 03 02 00 07";
inline constexpr char refusal[] = "01 83 02";
inline constexpr char runMany[] = "01 10 F0 00 00 02"; // the reply to any write of F0.00 and F0.01

/// Requests go out 10 ms apart from 10 ms on, and each frame comes 1 ms after what was before it.
class OwedRepliesTest : public ::testing::Test {
protected:
    void send(const FRAME_PRO &request, bool mayEcho = false)
    {
        now = dx4::host::Duration((now.count() / 10000 + 1) * 10000);
        owed.noteSent(request, mayEcho, now);
    }

    /// Sends a request that nobody waits for any more.
    void sendInVain(const FRAME_PRO &request, bool mayEcho = false)
    {
        send(request, mayEcho);
        owed.noteGivenUp();
    }

    /// Kind of a frame, with "?" where several requests can have brought it.
    std::string hear(const std::string &hex)
    {
        now += std::chrono::milliseconds(1);
        claim = owed.take(framed(hex), now);
        static const char *const kinds[] = { "unowed", "echo", "late", "own" };
        const bool isKnown = claim.isSingle || claim.kind == dx4::host::OwedReplies::Kind::Unowed;
        return std::string(kinds[static_cast<int>(claim.kind)]) + (isKnown ? "" : "?");
    }

    dx4::host::OwedReplies owed;
    dx4::host::OwedReplies::Claim claim;
    dx4::host::Duration now { 0 };
};
