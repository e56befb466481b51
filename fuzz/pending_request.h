// SPDX-License-Identifier: MIT
// Brings the driver, through its entry points, to a request of any kind that waits for its reply.
#pragma once

#include "byte_source.h"
#include "driver_api.h"

#include <vector>

/// How a request came about.
enum class RequestKind { None, CyclicRead, ConditionRead, Write, RecipeWrite, RecipeRead };

/// One report that the host's callback took.
struct Report {
    int linkId;
    int station;
    QString name;
    int address;

    bool operator==(const Report &other) const
    {
        return linkId == other.linkId && station == other.station && name == other.name
            && address == other.address;
    }
};

/// What was asked for, drawn from the input.
struct RequestPlan {
    RequestKind kind = RequestKind::None;
    int station = 0;
    QString type;
    int address = 0;
    int count = 0; ///< registers
    int retryLimit = 1;
    int badRepliesBefore = 0; ///< below the limit
    int firstValue = 0; ///< register i of the cache holds firstValue + i
    int writtenValue = 0; ///< register i of a write gets writtenValue + i
    bool isMonitored = false;
};

/// @param mayBeLong  counts go up to what a reply can carry, and beyond, else to 8 registers
RequestPlan drawPlan(model::ByteSource &source, bool mayBeLong);

/// The host around the driver: its memory and what its callback heard.
struct FuzzHost {
    FuzzHost();

    /// Starts the link anew and queues the request of the plan, its cache records filled and
    /// marked.
    void queue(const RequestPlan &plan);

    std::vector<unsigned char> block; ///< exactly as long as the driver may expect
    std::vector<unsigned short> recipe;
    QMutex mutex;
    std::vector<Report> heard; ///< since the request was queued
};

/// The values of the plan's registers as 16 bits each, through one intf_getData. Registers of an
/// unknown type read as 0.
std::vector<int> shownValues(const RequestPlan &plan);

/// Number that depends on every member but failCount, on list contents too.
std::size_t stateDigest();
