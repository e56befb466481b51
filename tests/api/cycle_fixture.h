// SPDX-License-Identifier: MIT
// Steps of the cycle that many black-box tests share: merge, queue, serve, answer, look inside.
#pragma once

#include "driver_fixture.h"

#include <initializer_list>
#include <string>
#include <vector>

/// A loaded driver with the calls of one cycle as short verbs.
class CycleFixture : public DriverFixture {
protected:
    /// Configures cyclic polling; `merged` then holds the rewritten list. Gives the result.
    int merge(std::initializer_list<KEY_ADDRESS> addresses);

    /// Queues a one-off read; gives the result.
    int readOnce(int station, const char *type, int address, int count, int subAddress = 0,
                 int varKind = 0);

    /// Takes the next frame and answers it well: zeros to a read, an echo to a write.
    /// Gives "phase station type address count" of what was served, "" when there was nothing.
    std::string serve();

    /// What the next `times` calls of serve() give.
    std::vector<std::string> serveTimes(int times);

    /// Hands in a well-formed reply with these register values; gives the result.
    int answer(const std::vector<int> &values);

    /// Hands in a well-formed echo of a write; gives the result.
    int echo();

    /// Hands in an empty reply; gives the result.
    int silence();

    /// The record of this register in the plug-in's cache, appended first if there is none.
    _DATA_ &record(int station, const char *type, int address);

    /// Whether the cache has a record of this register.
    bool isCached(int station, const char *type, int address) const;

    /// Keys of the cache in list order: "1 D 0; 1 D 1".
    std::string cacheKeys() const;

    QList<KEY_ADDRESS> merged;
};

/// A variable without data, as a host would put it into a list of the driver's.
VARIABLE variable(int station, const char *type, int address, int count, int varKind = 0);

/// "station type address count".
std::string text(const VARIABLE &var);

/// The entries of a list as text, "; " between them.
std::string text(const QList<VARIABLE> &list);
std::string text(const QList<KEY_ADDRESS> &list);
