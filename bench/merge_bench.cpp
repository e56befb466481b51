// SPDX-License-Identifier: MIT
// Merging of the addresses that a host's screens need.
#include "driver_link.h"
#include "limit.h"
#include "samples.h"

#include <algorithm>
#include <random>

namespace bench {
namespace {

constexpr int addressesPerStation = 500; // 400 parameters and 100 monitor values
constexpr int groups = 10;
constexpr int parametersPerGroup = 40;

// Runs of ten with a gap behind each.
int withGaps(int index)
{
    return index + index / 10;
}

KEY_ADDRESS addressNumber(int number)
{
    const int station = 1 + number / addressesPerStation;
    const int rest = number % addressesPerStation;
    if (rest >= groups * parametersPerGroup) {
        const int index = rest - groups * parametersPerGroup;
        return wantedAddress(station, QStringLiteral("D"), withGaps(index), 1);
    }
    const int group = rest / parametersPerGroup;
    const int index = withGaps(rest % parametersPerGroup);
    return wantedAddress(station, QStringLiteral("F"), group * 256 + index, 1);
}

// Always the same order, as if the screens were made over years.
QList<KEY_ADDRESS> shuffledAddresses(int count)
{
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i)
        numbers.push_back(i);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(static_cast<unsigned>(count)));
    QList<KEY_ADDRESS> list;
    for (const int number : numbers)
        list.append(addressNumber(number));
    return list;
}

void checkSameBlocks(const QList<KEY_ADDRESS> &all)
{
    QList<KEY_ADDRESS> byDriver = all;
    QList<KEY_ADDRESS> byLimit = all;
    startLink();
    loadedDriver().addrMerge(byDriver);
    Limit limit;
    limit.start(defaultBlock, countChange);
    limit.merge(byLimit);
    const bool isSame = std::equal(byDriver.cbegin(), byDriver.cend(), byLimit.cbegin(),
                                   byLimit.cend(), [](const KEY_ADDRESS &a, const KEY_ADDRESS &b) {
                                       return a.station == b.station && a.regType == b.regType
                                           && a.address == b.address && a.count == b.count;
                                   });
    if (!isSame)
        endWith("the driver and its lower bound merge to different blocks");
}

// The lists live as long as the registered measurements.
struct MergeRun {
    QList<KEY_ADDRESS> all;
    QList<KEY_ADDRESS> work;
    Limit limit;
};

void addMerges(int count)
{
    const auto run = std::make_shared<MergeRun>();
    const int iterations = std::max(2, 20000 / count);
    const std::string size = std::to_string(count);
    const auto makeList = [run, count] {
        if (run->all.isEmpty()) {
            run->all = shuffledAddresses(count);
            checkSameBlocks(run->all);
        }
        run->work = run->all;
    };
    const auto byDriver = [run] { loadedDriver().addrMerge(run->work); };
    const auto byLimit = [run] { run->limit.merge(run->work); };
    const auto afresh = [makeList, run] {
        makeList();
        startLink();
        run->limit.start(defaultBlock, countChange);
    };
    measureSteps("merge/fresh/" + size + "/driver", iterations, 1, afresh, byDriver);
    measureSteps("merge/fresh/" + size + "/limit", iterations, 1, afresh, byLimit);
    const auto againByDriver = [afresh, makeList, byDriver, run] {
        if (loadedDriver().state->dataAreas.size() != run->all.size()) {
            afresh();
            byDriver();
        }
        makeList();
    };
    const auto againByLimit = [makeList, byLimit] {
        makeList();
        byLimit();
        makeList();
    };
    measureSteps("merge/again/" + size + "/driver", iterations, 1, againByDriver, byDriver);
    measureSteps("merge/again/" + size + "/limit", iterations, 1, againByLimit, byLimit);
}

} // namespace

void addMergeBenchmarks()
{
    for (const int count : { 1000, 10000, 50000 })
        addMerges(count);
}

} // namespace bench
