// SPDX-License-Identifier: MIT
// The guard on a line with one station that answers in order, late or not.
#pragma once

#include "asked.h"
#include "buffering_station.h"
#include "host/exchange/guarded_exchange.h"

#include <gtest/gtest.h>

/// 10000 bit/s: a character takes 1 ms; 100 ms response timeout.
inline dx4::host::LineSettings slowLine()
{
    dx4::host::LineSettings settings;
    settings.speed = 10000;
    settings.responseTimeout = std::chrono::milliseconds(100);
    return settings;
}

inline const QByteArray replyA = framed("01 03 04 AA AA AA AA");
inline const QByteArray replyB = framed("01 03 04 BB BB BB BB");
inline const QByteArray replyToThree = framed("01 03 06 AA AA AA AA 00 00");

/// A is two registers of 0xAAAA, B two of 0xBBBB.
class GuardedStation : public ::testing::Test {
protected:
    GuardedStation()
    {
        inverter.station.registers = { { { 1, 0xD000 }, 0xAAAA },
                                       { { 1, 0xD001 }, 0xAAAA },
                                       { { 1, 0xD008 }, 0xBBBB },
                                       { { 1, 0xD009 }, 0xBBBB } };
    }

    /// Asks for A, whose reply begins to come so long after the request.
    dx4::host::Reply askForALate(int milliseconds)
    {
        inverter.delays = { std::chrono::milliseconds(milliseconds) };
        return guard.run(readA);
    }

    /// Asks for B until it is answered and gives the tries that it took; 0 when 9 were not enough
    /// or anything but B was believed.
    int triesForB()
    {
        for (int tries = 1; tries < 10; ++tries) {
            const dx4::host::Reply reply = guard.run(readB);
            heardLate += guard.report().lateReplies;
            if (!reply.bytes.isEmpty())
                return reply.bytes == replyB ? tries : 0;
        }
        return 0;
    }

    /// Three answers tell whether the adapter echoes.
    void learnTheAdapter()
    {
        for (int i = 0; i < 3; ++i)
            guard.run(readOfThree);
    }

    BufferingStation inverter { slowLine() };
    dx4::host::GuardedExchange guard { inverter.line };
    int heardLate = 0; // replies, while B was asked for
};
