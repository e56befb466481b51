// SPDX-License-Identifier: MIT
// The stations of a line as a user types them.
#include "simulator/station_list.h"

#include "common/number_text.h"
#include "wire/limits.h"

#include <algorithm>
#include <optional>

namespace dx4::sim {

namespace {

const char *const expected = "; stations are 1 to 247, such as 1,3-5";

StationList wrong(const std::string &what)
{
    return { {}, what };
}

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

/// One station, or a run of them. @return what is wrong
std::string addRun(std::vector<int> &stations, const std::string &run)
{
    const std::size_t dash = run.find('-', 1);
    const bool isOne = dash == std::string::npos;
    const std::optional<int> first = common::parseWholeNumber(run.substr(0, dash));
    const std::optional<int> last = isOne ? first : common::parseWholeNumber(run.substr(dash + 1));
    if (!first || !last)
        return quoted(run) + " is no station" + expected;
    for (const int end : { *first, *last }) {
        if (end < 1 || end > lastStation)
            return quoted(run) + " is out of range" + expected;
    }
    if (*last < *first)
        return quoted(run) + " ends before it begins";
    for (int station = *first; station <= *last; ++station) {
        if (std::find(stations.begin(), stations.end(), station) != stations.end())
            return std::to_string(station) + " stands there twice";
        stations.push_back(station);
    }
    return {};
}

} // namespace

StationList parseStations(const std::string &text)
{
    StationList list;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string error = addRun(list.stations, text.substr(begin, end - begin));
        if (!error.empty())
            return wrong(error);
        begin = end + 1;
    }
    return list;
}

} // namespace dx4::sim
