// SPDX-License-Identifier: MIT
// All that is known of one line at one moment.
#include "host/service/line_snapshot.h"

#include <algorithm>
#include <tuple>

namespace dx4::host {

QString RegisterValue::text() const
{
    return state.known ? scaling.text(state.value) : QStringLiteral("-");
}

const RegisterValue *LineSnapshot::find(int station, const QString &regType, int address) const
{
    const auto wanted = std::tie(station, regType, address);
    const auto place = std::lower_bound(
        registers.cbegin(), registers.cend(), wanted, [](const RegisterValue &value, auto key) {
            return std::tie(value.station, value.regType, value.address) < key;
        });
    const bool isFound = place != registers.cend()
        && std::tie(place->station, place->regType, place->address) == wanted;
    return isFound ? &*place : nullptr;
}

QDateTime LineSnapshot::readAt(const RegisterValue &value) const
{
    using std::chrono::milliseconds;
    if (!value.state.known)
        return {};
    return takenAt.addMSecs(-std::chrono::duration_cast<milliseconds>(value.state.age).count());
}

} // namespace dx4::host
