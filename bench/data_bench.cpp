// SPDX-License-Identifier: MIT
// Reading the cache, and making its records.
#include "alloc_count.h"
#include "driver_link.h"
#include "limit.h"
#include "modbus_peer.h"
#include "samples.h"

namespace bench {
namespace {

constexpr int cacheSize = 10000;
constexpr int startingPoints = 8; // read in turn, far apart
constexpr int pointDistance = cacheSize / startingPoints;
constexpr int registersPerCall = 100;

const Poll fullCache = { cacheSize, 16, 2, false };

template <typename Read> void readInTurn(benchmark::State &state, int count, Read read)
{
    unsigned char values[2 * 120];
    int address = 0;
    for ([[maybe_unused]] auto step : state) {
        read(address, count, values);
        benchmark::DoNotOptimize(values);
        address = address + pointDistance == cacheSize ? 0 : address + pointDistance;
    }
}

void addReads(int count)
{
    const std::string name = "getData/" + std::to_string(count);
    const int iterations = 400000 / (10 + count) * 10;
    measure(name + "/driver", iterations, [count](benchmark::State &state) {
        startPolling(fullCache);
        readInTurn(state, count, [](int address, int registers, unsigned char *values) {
            loadedDriver().getData(pollStation, pollType, address, registers, values);
        });
    });
    measure(name + "/limit", iterations, [count](benchmark::State &state) {
        Limit limit;
        limit.start(defaultBlock, countChange);
        std::vector<unsigned char> all(2 * cacheSize);
        limit.getData(pollStation, pollType, 0, cacheSize, all.data());
        readInTurn(state, count, [&limit](int address, int registers, unsigned char *values) {
            limit.getData(pollStation, pollType, address, registers, values);
        });
    });
    measure(name + "/map", iterations, [count](benchmark::State &state) {
        RegisterMap map;
        map.fill(fullCache, countChange);
        readInTurn(state, count, [&map](int address, int registers, unsigned char *values) {
            map.getData(pollStation, pollType, address, registers, values);
        });
    });
}

void createInDriver(int registers)
{
    unsigned char values[2 * registersPerCall];
    for (int address = 0; address < registers; address += registersPerCall)
        loadedDriver().getData(pollStation, pollType, address, registersPerCall, values);
}

void addCreation(int registers)
{
    const std::string name = "create/" + std::to_string(registers);
    const int iterations = std::max(2, 20000 / registers);
    measureSteps(
        name + "/driver", iterations, registers, [] { startLink(); },
        [registers] { createInDriver(registers); });
    const auto limit = std::make_shared<Limit>();
    measureSteps(
        name + "/limit", iterations, registers,
        [limit] { limit->start(defaultBlock, countChange); },
        [limit, registers] {
            unsigned char values[2 * registersPerCall];
            for (int address = 0; address < registers; address += registersPerCall)
                limit->getData(pollStation, pollType, address, registersPerCall, values);
        });
}

} // namespace

void addDataBenchmarks()
{
    for (const int count : { 1, 16, 120 })
        addReads(count);
    for (const int registers : { 1000, 10000, 100000 })
        addCreation(registers);
}

void countDataAllocations(Samples &samples)
{
    constexpr int rounds = 1000;
    startPolling(fullCache);
    unsigned char values[2 * 16];
    loadedDriver().getData(pollStation, pollType, 0, 16, values);
    const std::size_t before = allocations();
    for (int i = 0; i < rounds; ++i)
        loadedDriver().getData(pollStation, pollType, i, 16, values);
    samples["allocations/getData"] = { static_cast<double>(allocations() - before) / rounds };
}

void countRegisterBytes(Samples &samples)
{
    for (const int registers : { 1000, 10000, 100000 }) {
        // What an earlier cache left behind is let go of by the first records of the next one.
        startLink();
        createInDriver(registersPerCall);
        startLink();
        const std::size_t before = heapBytes();
        createInDriver(registers);
        samples["bytes/" + std::to_string(registers)] = { static_cast<double>(heapBytes() - before)
                                                          / registers };
    }
    startLink();
}

} // namespace bench
