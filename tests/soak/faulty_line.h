// SPDX-License-Identifier: MIT
// A slave in memory behind a line on which anything can go wrong.
#pragma once

#include "host_records.h"

#include <QByteArray>

#include <map>
#include <random>

/// What the line did to one exchange.
enum class Fault {
    None,
    RequestLost,
    ReplyLost,
    BitsFlipped,
    Truncated,
    Extended,
    Junk,
    Exception,
    ForeignStation,
    LateReply,
};
inline constexpr int faultKinds = 10;

/// One exchange as the line saw it.
struct Exchange {
    QByteArray right; ///< what the slave answers; empty when the request never reached it
    QByteArray received; ///< what the host gets
    Fault fault = Fault::None;
};

/// Registers behind functions 3, 6 and 16; every station has registers of its own.
class FaultyLine {
public:
    explicit FaultyLine(unsigned seed)
        : m_random(seed)
    {
    }

    /// Carries one frame there and what answers it back.
    ///
    /// @param percent  of the exchanges go wrong
    Exchange carry(const FRAME_PRO &frame, int percent);

    /// Lets the drive change some of its monitor values.
    void moveOn();

    /// 0 to `limit` - 1.
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

private:
    using Register = std::pair<int, int>; // station, Modbus register

    QByteArray answer(const FRAME_PRO &frame);
    QByteArray answerRead(int station, int first, int count);
    QByteArray spoil(Fault fault, const QByteArray &right);
    QByteArray randomBytes(int count);

    std::mt19937 m_random;
    std::map<Register, int> m_registers;
    QByteArray m_previous; // the answer before this one, for late replies
};

/// True when the last two bytes are the CRC of those before them, computed bit by bit.
bool hasRightCrc(const QByteArray &bytes);
