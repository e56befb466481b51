// SPDX-License-Identifier: MIT
// Joins the addresses that the host's screens need into as few block reads as possible.
#include "korvane_dx4/address_merge.h"

#include "driver_api.h"
#include "frames/record_copy.h"
#include "korvane_dx4/call_watch.h"
#include "korvane_dx4/data_areas.h"
#include "registers/register_type.h"
#include "wire/wrap.h"

#include <algorithm>
#include <cstddef>
#include <vector>

using namespace dx4;

namespace {

constexpr int keepOrderMode = 2;
constexpr unsigned bandWidth = 65535;

// Deliberate: five bands per station although there are six types. The last type of one station
// shares its band with the first type of the next, so those two are ordered by address alone.
constexpr unsigned bandsPerStation = 5;

// What merging looks at; records of a kilobyte stay where they are while these are sorted.
struct Run {
    unsigned weight;
    int source; ///< position of the record in the host's list
    RegisterType type;
    const QString *regType; ///< tells unknown types apart
    int address;
    int count;
};

unsigned weightOf(int station, const QString &regType, int address)
{
    unsigned place = 0;
    const QList<QString> &names = driver.regTypeList;
    for (int i = 0; i < names.size() && place == 0; ++i) {
        if (sameText(names.at(i), regType))
            place = static_cast<unsigned>(i) + 1;
    }
    const unsigned band = bandsPerStation * static_cast<unsigned>(station) + place;
    return bandWidth * band + static_cast<unsigned>(address);
}

Run runOf(const KEY_ADDRESS &key, int source)
{
    return { weightOf(key.station, key.regType, key.address),
             source,
             registerType(key.regType),
             &key.regType,
             key.address,
             key.count };
}

bool sameType(const Run &a, const Run &b)
{
    return a.type == b.type && (a.type != UnknownType || sameText(*a.regType, *b.regType));
}

bool mustStartBlock(const Run &block, const Run &next)
{
    if (!sameType(block, next))
        return true;
    const bool leavesGap = wrapSub(next.address, wrapAdd(block.address, block.count)) > 0;
    if (leavesGap)
        return true;
    const bool entersGroup = block.type == TypeF && block.address / 256 != next.address / 256;
    return entersGroup;
}

// Deliberate: the block ends where the joining address ends, also when that lies inside the block.
bool join(Run &block, const Run &next)
{
    if (mustStartBlock(block, next))
        return false;
    const int span = wrapSub(wrapAdd(next.address, next.count), block.address);
    if (span > driver.blockSize)
        return false;
    block.count = span;
    return true;
}

// One pass over the runs, in place. `starts` hears which run starts each block; it may be null.
void joinNeighbours(std::vector<Run> &runs, QList<int> *starts)
{
    std::size_t blocks = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (i > 0 && join(runs[blocks - 1], runs[i]))
            continue;
        runs[blocks++] = runs[i];
        if (starts)
            starts->append(static_cast<int>(i));
    }
    runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(blocks), runs.end());
}

// Sorts ascending by weight; equal weights keep their order. Keys of eight bytes are sorted in
// place of runs: weight above, position in the list below.
void sortByWeight(std::vector<Run> &runs)
{
    std::vector<quint64> keys;
    keys.reserve(runs.size());
    for (const Run &run : runs)
        keys.push_back(quint64 { run.weight } << 32 | static_cast<quint32>(run.source));
    if (std::is_sorted(keys.begin(), keys.end()))
        return;
    std::sort(keys.begin(), keys.end());
    std::vector<Run> sorted;
    sorted.reserve(runs.size());
    for (const quint64 key : keys)
        sorted.push_back(runs[static_cast<quint32>(key)]);
    runs.swap(sorted);
}

std::vector<Run> runsOf(const QList<KEY_ADDRESS> &list)
{
    std::vector<Run> runs;
    const int count = static_cast<int>(list.size());
    runs.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        runs.push_back(runOf(list.at(i), i));
    return runs;
}

// A block keeps all fields of its first address but the count.
QList<KEY_ADDRESS> blocksOf(const QList<KEY_ADDRESS> &list, const std::vector<Run> &runs)
{
    QList<KEY_ADDRESS> blocks;
    blocks.reserve(static_cast<int>(runs.size()));
    for (const Run &run : runs) {
        blocks.append(list.at(run.source));
        blocks.last().count = run.count;
    }
    return blocks;
}

void makeCyclicReads(const QList<KEY_ADDRESS> &blocks)
{
    VARIABLE var;
    var.varKind = cyclicReadKind;
    driver.readList.reserve(blocks.size());
    for (const KEY_ADDRESS &block : blocks) {
        var.station = block.station;
        assignText(var.regType, sharedName(block.regType));
        var.address = block.address;
        var.count = block.count;
        driver.readList.append(var);
    }
}

} // namespace

unsigned getRegAddressWeight(int station, QString regType, int address, int /*unused*/)
{
    return weightOf(station, regType, address);
}

int the_Merge(KEY_ADDRESS &a, KEY_ADDRESS &b)
{
    return mustStartBlock(runOf(a, 0), runOf(b, 1)) ? 1 : 0;
}

void addrMerge(QList<KEY_ADDRESS> &list, int mode)
{
    std::vector<Run> runs = runsOf(list);
    if (mode == keepOrderMode) {
        joinNeighbours(runs, &driver.mergeIndexList);
    } else {
        sortByWeight(runs);
        joinNeighbours(runs, nullptr);
        // A block cut at the block size can take in what follows it once it was shortened.
        joinNeighbours(runs, nullptr);
    }
    list = blocksOf(list, runs);
}

int intf_addrMerge(QList<KEY_ADDRESS> &addresses)
{
    [[maybe_unused]] const CallWatch watch("intf_addrMerge");
    const CacheScope scope;
    clearMonitorMarks();
    const QList<KEY_ADDRESS> &wanted = addresses;
    for (const KEY_ADDRESS &key : wanted)
        markMonitored(key.station, key.regType, key.address, key.count);
    driver.readList.clear();
    addrMerge(addresses, 1);
    makeCyclicReads(wanted);
    return static_cast<int>(driver.readList.size());
}
