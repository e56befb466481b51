// SPDX-License-Identifier: MIT
// How a serial line is set, and the times that follow from it.
#include "host/line_settings.h"

namespace dx4::host {
namespace {

constexpr int fastestSpeedWithRelativeGap = 19200; // bit/s
constexpr Duration fixedGap { 1750 };
constexpr long microsecondsPerSecond = 1'000'000;

} // namespace

Duration LineSettings::characterTime() const
{
    const int bits = 1 + 8 + (parity == Parity::None ? 0 : 1) + stopBits;
    return Duration { bits * microsecondsPerSecond / qMax(speed, 1) };
}

Duration LineSettings::wireTime(int bytes) const
{
    return characterTime() * qMax(bytes, 0);
}

Duration LineSettings::silentGap() const
{
    return speed > fastestSpeedWithRelativeGap ? fixedGap : characterTime() * 7 / 2;
}

} // namespace dx4::host
