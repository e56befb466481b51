// SPDX-License-Identifier: MIT
// Round numbers for scales.
#include "panel/trend/nice_scale.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dx4::panel {
namespace {

constexpr std::array<double, 4> roundSteps = { 1.0, 2.0, 2.5, 5.0 };
constexpr double tolerance = 1e-9; // of a step, for what is not exact in binary
constexpr int mostPower = 12; // of ten, that a step can have

constexpr Moment second = 1000;
constexpr Moment minute = 60 * second;
constexpr Moment hour = 60 * minute;
constexpr std::array<Moment, 17> timeSteps = {
    second, 2 * second, 5 * second, 10 * second, 15 * second, 30 * second,
    minute, 2 * minute, 5 * minute, 10 * minute, 15 * minute, 30 * minute,
    hour,   2 * hour,   3 * hour,   6 * hour,    12 * hour,
};

double roundedDown(double value, double step)
{
    return std::floor(value / step + tolerance) * step;
}

bool holds(double lowest, double highest, double step, int divisions)
{
    return roundedDown(lowest, step) + step * divisions >= highest - step * tolerance;
}

int decimalsOf(double round, int power)
{
    const int own = std::abs(round - 2.5) < tolerance ? 1 : 0;
    return std::max(0, own - power);
}

} // namespace

NiceScale niceScale(double lowest, double highest, int divisions, int decimals)
{
    NiceScale scale;
    scale.divisions = divisions;
    for (int power = -decimals; power <= mostPower; ++power) {
        for (const double round : roundSteps) {
            const double step = round * std::pow(10.0, power);
            const bool isTooFine = decimalsOf(round, power) > decimals;
            if (isTooFine || !holds(lowest, highest, step, divisions))
                continue;
            scale.step = step;
            scale.lowest = roundedDown(lowest, step);
            scale.decimals = decimalsOf(round, power);
            return scale;
        }
    }
    return scale;
}

TimeTicks timeTicks(Moment from, Moment to, Moment offset, int most)
{
    const auto fits = [&](Moment step) { return (to - from) / step <= most; };
    const auto *found = std::find_if(timeSteps.begin(), timeSteps.end(), fits);
    TimeTicks ticks;
    ticks.step = found == timeSteps.end() ? timeSteps.back() : *found;
    const Moment past = (from + offset) % ticks.step;
    for (Moment at = from + (past == 0 ? 0 : ticks.step - past); at <= to; at += ticks.step)
        ticks.at.append(at);
    return ticks;
}

} // namespace dx4::panel
