// SPDX-License-Identifier: MIT
// The linked driver on a fresh link, with the memory of a host around it.
#pragma once

#include "driver_api.h"

#include <vector>

/// Starts a link when made and leaves the driver empty when it goes.
class LinkUnderTest {
public:
    /// @param retryLimit  bad replies
    /// @param blockSize   registers
    explicit LinkUnderTest(int blockSize, int retryLimit = 3);
    ~LinkUnderTest();
    LinkUnderTest(const LinkUnderTest &) = delete;
    LinkUnderTest &operator=(const LinkUnderTest &) = delete;

    /// Writes `values` from `address` on, one register each.
    void write(const QString &type, int address, const std::vector<int> &values);

    /// Asks for one read, whole registers.
    void readOnce(const QString &type, int address, int count);

    /// Lets the driver poll these registers.
    void poll(const QString &type, int address, int count);

    /// What the cache shows, one number per register.
    std::vector<int> shown(const QString &type, int address, int count);

    std::vector<unsigned char> block;
    std::vector<unsigned short> recipe;
    QMutex mutex;
};

/// An address record of station 1.
KEY_ADDRESS wantedAddress(const QString &type, int address, int count);

/// Payload with its CRC behind it, computed bit by bit, apart from the driver's own code.
QByteArray withCrc(QByteArray payload);
