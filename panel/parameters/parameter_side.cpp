// SPDX-License-Identifier: MIT
// One of the two sides that are compared: a drive or a file.
#include "panel/parameters/parameter_side.h"

#include "panel/model/shown.h"

namespace dx4::panel {

ParameterSide::Known ParameterSide::known(int address) const
{
    if (set.values.contains(address))
        return Known::Value;
    return set.refused.contains(address) ? Known::Absent : Known::NotRead;
}

std::optional<quint16> ParameterSide::value(int address) const
{
    const auto found = set.values.constFind(address);
    return found == set.values.constEnd() ? std::nullopt : std::optional<quint16>(found.value());
}

bool ParameterSide::isFresh(host::Duration now) const
{
    return kind == Kind::Drive && readAt && now - *readAt < oldFrom;
}

QString ParameterSide::stateText(host::Duration now) const
{
    if (kind == Kind::Nothing)
        return tr("tap to choose");
    if (isReading)
        return total > 0 ? tr("reading %1 of %2").arg(done).arg(total) : tr("waiting to be read");
    if (kind == Kind::File)
        return host::isComplete(set) ? tr("file of station %1").arg(set.station)
                                     : tr("station %1, not complete").arg(set.station);
    if (!readAt)
        return tr("not read");
    const QString age = spanText(now - *readAt);
    if (isBrokenOff)
        return tr("%1 read, %2 ago").arg(set.values.size() + set.refused.size()).arg(age);
    return isSaved ? tr("read %1 ago, saved").arg(age) : tr("read %1 ago, not saved").arg(age);
}

QString spanText(host::Duration span)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(span).count();
    if (seconds < 60)
        return ParameterSide::tr("%1 s").arg(seconds);
    if (seconds < 3600)
        return ParameterSide::tr("%1 min").arg(seconds / 60);
    return ParameterSide::tr("%1 h").arg(seconds / 3600);
}

} // namespace dx4::panel
