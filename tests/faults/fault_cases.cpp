// SPDX-License-Identifier: MIT
// Every kind of fault in the forms that differ on the line.
#include "fault_cases.h"

#include <stdexcept>

namespace dx4::faults {

using sim::FaultKind;
using sim::FaultRule;
using sim::JunkPlace;
using sim::Micros;
using sim::Side;

namespace {

// Against a response timeout of 100 ms.
constexpr Micros inTime { 50000 };
constexpr Micros tooLate { 130000 };
constexpr Micros severalRequests { 1500000 };

FaultRule plain(FaultKind kind)
{
    FaultRule rule;
    rule.kind = kind;
    return rule;
}

FaultRule lasting(FaultKind kind, Micros duration)
{
    FaultRule rule = plain(kind);
    rule.duration = duration;
    return rule;
}

FaultRule on(Side side, FaultKind kind, std::optional<int> count = std::nullopt)
{
    FaultRule rule = plain(kind);
    rule.side = side;
    rule.count = count;
    return rule;
}

FaultRule junk(Side side, JunkPlace place)
{
    FaultRule rule = on(side, FaultKind::Junk);
    rule.place = place;
    return rule;
}

FaultRule exception(int code)
{
    FaultRule rule = plain(FaultKind::Exception);
    rule.value = code;
    return rule;
}

} // namespace

std::vector<FaultRule> FaultCase::at(int n) const
{
    std::vector<FaultRule> rules;
    for (int i = 0; i < inARow; ++i) {
        rules.push_back(rule);
        rules.back().frame = n + i;
    }
    return rules;
}

const std::vector<FaultCase> &faultCases()
{
    static const std::vector<FaultCase> cases = {
        { "DropRequest", plain(FaultKind::DropRequest) },
        { "DropThreeRequests", plain(FaultKind::DropRequest), 3 },
        { "DropReply", plain(FaultKind::DropReply) },
        { "DropThreeReplies", plain(FaultKind::DropReply), 3 },
        { "DelayInTime", lasting(FaultKind::Delay, inTime) },
        { "DelayPastTheTimeout", lasting(FaultKind::Delay, tooLate) },
        { "DelayThreePastTheTimeout", lasting(FaultKind::Delay, tooLate), 3 },
        { "DelayFourPastTheTimeout", lasting(FaultKind::Delay, tooLate), 4 },
        { "FlipABitOfTheReply", on(Side::Reply, FaultKind::FlipBits) },
        { "FlipTwoBitsOfThreeReplies", on(Side::Reply, FaultKind::FlipBits, 2), 3 },
        { "FlipABitOfTheRequest", on(Side::Request, FaultKind::FlipBits) },
        { "FlipTwoBitsOfThreeRequests", on(Side::Request, FaultKind::FlipBits, 2), 3 },
        { "BreakCrcOfTheReply", on(Side::Reply, FaultKind::BreakCrc) },
        { "BreakCrcOfThreeReplies", on(Side::Reply, FaultKind::BreakCrc), 3 },
        { "BreakCrcOfTheRequest", on(Side::Request, FaultKind::BreakCrc) },
        { "TruncateTheReply", on(Side::Reply, FaultKind::Truncate) },
        { "TruncateThreeReplies", on(Side::Reply, FaultKind::Truncate), 3 },
        { "TruncateTheRequest", on(Side::Request, FaultKind::Truncate) },
        { "JunkBeforeTheReply", junk(Side::Reply, JunkPlace::Before) },
        { "JunkInsideTheReply", junk(Side::Reply, JunkPlace::Inside) },
        { "JunkInsideThreeReplies", junk(Side::Reply, JunkPlace::Inside), 3 },
        { "JunkAfterTheReply", junk(Side::Reply, JunkPlace::After) },
        { "JunkBeforeTheRequest", junk(Side::Request, JunkPlace::Before) },
        { "JunkInsideTheRequest", junk(Side::Request, JunkPlace::Inside) },
        { "JunkAfterTheRequest", junk(Side::Request, JunkPlace::After) },
        { "WrongStationInTheReply", on(Side::Reply, FaultKind::WrongStation) },
        { "WrongStationInThreeReplies", on(Side::Reply, FaultKind::WrongStation), 3 },
        { "WrongStationInTheRequest", on(Side::Request, FaultKind::WrongStation) },
        { "WrongStationInThreeRequests", on(Side::Request, FaultKind::WrongStation), 3 },
        { "WrongFunctionInTheReply", on(Side::Reply, FaultKind::WrongFunction) },
        { "WrongFunctionInThreeReplies", on(Side::Reply, FaultKind::WrongFunction), 3 },
        { "WrongFunctionInTheRequest", on(Side::Request, FaultKind::WrongFunction) },
        { "ExceptionOfTheDevice", exception(4) },
        { "ThreeExceptionsOfTheDevice", exception(4), 3 },
        { "ExceptionOfTheAddress", exception(2) },
        { "Echo", plain(FaultKind::Echo) },
        { "EchoThreeTimes", plain(FaultKind::Echo), 3 },
        { "SilenceOfOneRequest", plain(FaultKind::Silence) },
        { "SilenceOfSeveralRequests", lasting(FaultKind::Silence, severalRequests) },
        { "UnplugForOneRequest", plain(FaultKind::Unplug) },
        { "UnplugForSeveralRequests", lasting(FaultKind::Unplug, severalRequests) },
        { "PowerCycleOfOneRequest", plain(FaultKind::PowerCycle) },
        { "PowerCycleOfSeveralRequests", lasting(FaultKind::PowerCycle, severalRequests) },
    };
    return cases;
}

const FaultCase &faultCase(const std::string &name)
{
    for (const FaultCase &fault : faultCases()) {
        if (name == fault.name)
            return fault;
    }
    throw std::out_of_range("no fault " + name);
}

void PrintTo(const FaultCase &fault, std::ostream *out)
{
    *out << fault.name;
}

} // namespace dx4::faults
