// SPDX-License-Identifier: MIT
// One host asking late stations, and what it believed that was not so.
#pragma once

#include "host/exchange/guarded_exchange.h"
#include "late_plant.h"
#include "plant.h"

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

/// What a line is like before its stations are known.
struct LineChoice {
    dx4::host::LineSettings settings;
    LineHabit habit;
};

LineChoice anyLine(Chance &chance);

/// With response timeouts of 20 to 50 ms, for real time.
LineChoice quickLine(Chance &chance);

/// Stations and a host with a plan, all by chance. Each request has one to three tries, as the
/// driver gives them.
class Trial {
public:
    enum class Stations { Any, InTime };

    /// @param plant  is as `line` says and has no station yet; outlives the trial
    Trial(Chance &chance, const LineChoice &line, Plant &plant, Stations stations = Stations::Any);

    /// So many steps of 1000 do something that is none of the plan: open the line anew, listen,
    /// probe, write at once or to all.
    void doBesides(unsigned perMille) { m_besidesPerMille = perMille; }

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

    dx4::host::Duration now() const { return m_plant.line().now(); }
    void addStations(dx4::host::Duration timeout, Stations stations);
    void addBlocks();
    void nextRequest();
    FRAME_PRO write(int station);
    void doBesides();
    void judge(const dx4::host::Reply &reply);
    void judgeRead(const QByteArray &reply);
    void judgeWrite();
    void judgeRefusal();
    void wrong(long &count, const std::string &what);

    Chance &m_chance;
    Plant &m_plant;
    dx4::host::GuardedExchange m_guard;
    dx4::host::Exchange *m_exchange;
    std::vector<FRAME_PRO> m_blocks;
    std::map<std::pair<int, int>, Shown> m_shown; // last, by station and register
    Request m_request;
    int m_nextBlock = 0;
    int m_nextValue = 0;
    unsigned m_writesPerMille = 0;
    unsigned m_switchesPerMille = 0;
    unsigned m_besidesPerMille = 0;
    TrialCounts m_counts;
    std::string m_text;
    std::string m_firstWrong;
};

/// A line in virtual time, by chance.
struct AnyPlant {
    explicit AnyPlant(Chance &chance)
        : line(anyLine(chance))
        , plant(line.settings, line.habit, chance)
    {
    }
    LineChoice line;
    LatePlant plant;
};

/// A trial in virtual time.
class VirtualTrial : private AnyPlant, public Trial {
public:
    explicit VirtualTrial(Chance &chance, Stations stations = Stations::Any)
        : AnyPlant(chance)
        , Trial(chance, line, plant, stations)
    {
    }
    using AnyPlant::plant;
};
