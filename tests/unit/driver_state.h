// SPDX-License-Identifier: MIT
// The linked driver object in its state after load, with every callback recorded.
#pragma once

#include "korvane_dx4.h"

#include <gtest/gtest.h>

#include <QMutex>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

/// Base of the white-box tests of the cycle: resets `driver` before and empties it after each test.
class DriverState : public ::testing::Test {
protected:
    DriverState();
    ~DriverState() override;

    /// The record of this register, appended first if there is none.
    static _DATA_ &record(int station, const char *type, int address);

    /// Keys of the cache in list order: "1 D 0; 1 D 1".
    static std::string cacheKeys();

    std::vector<unsigned char> hostBlock;
    std::vector<unsigned short> recipeBuffer;
    QMutex mutex;

    /// Every callback so far as "link station name address", in order.
    std::vector<std::string> calls;

    /// Runs inside each callback, after it was recorded.
    std::function<void()> insideCallback;

private:
    static void note(int linkId, int station, QString &name, int address);
};

/// A variable without data.
VARIABLE variableOf(int station, const char *type, int address, int count);

/// An address record as the host's screens ask for it.
KEY_ADDRESS keyOf(int station, const char *type, int address, int count);

/// The entries of a list as "station type address count", "; " between them.
std::string listText(const QList<VARIABLE> &list);
std::string listText(const QList<KEY_ADDRESS> &list);
