// SPDX-License-Identifier: MIT
// One host asking late stations, and what it believed that was not so.
#pragma once

#include "host/guarded_exchange.h"
#include "late_plant.h"

#include <string>
#include <vector>

/// What came of many steps.
struct TrialCounts {
    long steps = 0;
    long wrongValues = 0; ///< of another register, or older than one shown before
    long falseConfirmations = 0; ///< of writes that the station did not carry out
    long falseRefusals = 0; ///< of requests that the station would not refuse
    long goodReads = 0;
    long goodWrites = 0;
    long refusals = 0;
    long withheld = 0;
    long late = 0;
    dx4::host::Duration time { 0 };

    void add(const TrialCounts &other);
    long wrong() const { return wrongValues + falseConfirmations + falseRefusals; }
};

/// A plant and a host with a plan, all by chance. Each request has one to three tries, as the
/// driver gives them.
class Trial {
public:
    enum class Stations { Any, InTime };

    explicit Trial(Chance &chance, Stations stations = Stations::Any);

    /// One try of a request.
    void step();

    void steps(long count)
    {
        for (long i = 0; i < count; ++i)
            step();
    }

    const TrialCounts &counts() const { return m_counts; }

    /// What the plant is like, and the first thing that was wrong.
    std::string text() const { return m_text + m_firstWrong; }

    /// Uses an exchange that believes what has the right length, for the pace alone.
    void useExchange(dx4::host::Exchange &exchange) { m_exchange = &exchange; }
    LatePlant &plant() { return m_plant; }

private:
    struct Request {
        FRAME_PRO frame;
        int triesLeft = 0;
        dx4::host::Duration begun { 0 };
    };

    struct Shown {
        int version = 0;
        dx4::host::Duration at = -std::chrono::hours(1);
    };

    void addStations(Stations stations);
    void addBlocks();
    void nextRequest();
    FRAME_PRO write(int station);
    void judgeRead(const QByteArray &reply);
    void judgeWrite();
    void judgeRefusal();
    void wrong(long &count, const std::string &what);

    Chance &m_chance;
    dx4::host::LineSettings m_settings;
    LineHabit m_line;
    LatePlant m_plant;
    dx4::host::GuardedExchange m_guard;
    dx4::host::Exchange *m_exchange;
    std::vector<FRAME_PRO> m_blocks;
    std::map<std::pair<int, int>, Shown> m_shown; // last, by station and register
    Request m_request;
    int m_nextBlock = 0;
    int m_nextValue = 0;
    unsigned m_writesPerMille = 0;
    unsigned m_switchesPerMille = 0;
    TrialCounts m_counts;
    std::string m_text;
    std::string m_firstWrong;
};
