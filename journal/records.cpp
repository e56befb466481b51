// SPDX-License-Identifier: MIT
// What a journal holds.
#include "journal/records.h"

#include <tuple>

namespace dx4::journal {
namespace {

auto tied(const RegisterKey &key)
{
    return std::tie(key.line, key.station, key.regType, key.address);
}

auto tied(const Series &series)
{
    const host::Scaling &scaling = series.scaling;
    return std::tie(series.at, series.name, scaling.factor, scaling.offset, scaling.isSigned,
                    scaling.decimals, scaling.unit);
}

} // namespace

bool operator<(const RegisterKey &a, const RegisterKey &b)
{
    return tied(a) < tied(b);
}

bool operator==(const RegisterKey &a, const RegisterKey &b)
{
    return tied(a) == tied(b);
}

bool operator<(const Series &a, const Series &b)
{
    return tied(a) < tied(b);
}

QString kindName(EventKind kind)
{
    switch (kind) {
    case EventKind::Fault:
        return QStringLiteral("fault");
    case EventKind::Write:
        return QStringLiteral("write");
    case EventKind::Parameter:
        return QStringLiteral("parameter");
    case EventKind::Alarm:
        return QStringLiteral("alarm");
    case EventKind::Notice:
        return QStringLiteral("notice");
    case EventKind::Line:
        return QStringLiteral("line");
    case EventKind::Station:
        return QStringLiteral("station");
    case EventKind::Stop:
        return QStringLiteral("stop");
    case EventKind::Journal:
        return QStringLiteral("journal");
    case EventKind::Acknowledgement:
        return QStringLiteral("acknowledgement");
    }
    return QString();
}

} // namespace dx4::journal
