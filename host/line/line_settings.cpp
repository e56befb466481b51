// SPDX-License-Identifier: MIT
// How a serial line is set, and the times that follow from it.
#include "host/line/line_settings.h"

namespace dx4::host {
namespace {

constexpr int fastestSpeedWithRelativeGap = 19200; // bit/s
constexpr Duration fixedGap { 1750 };
constexpr qint64 microsecondsPerSecond = 1'000'000;

int bitsPerCharacter(const LineSettings &settings)
{
    return 1 + 8 + (settings.parity == Parity::None ? 0 : 1) + settings.stopBits;
}

/// Rounded up once for the whole span: cut off at each character, a long reply at 115,200 bit/s
/// would be awaited 0.2 ms less than it takes.
Duration timeOfHalfBits(qint64 halfBits, int speed)
{
    const qint64 perSecond = 2 * qint64 { qMax(speed, 1) };
    return Duration { (halfBits * microsecondsPerSecond + perSecond - 1) / perSecond };
}

} // namespace

Duration LineSettings::characterTime() const
{
    return wireTime(1);
}

Duration LineSettings::wireTime(int bytes) const
{
    return timeOfHalfBits(qint64 { 2 } * bitsPerCharacter(*this) * qMax(bytes, 0), speed);
}

Duration LineSettings::silentGap() const
{
    constexpr int halfCharacters = 7;
    const bool isFixed = gap == GapRule::Standard && speed > fastestSpeedWithRelativeGap;
    return isFixed ? fixedGap
                   : timeOfHalfBits(qint64 { halfCharacters } * bitsPerCharacter(*this), speed);
}

} // namespace dx4::host
