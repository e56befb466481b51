// SPDX-License-Identifier: MIT
// A freshly loaded driver with a host's block, buffer, mutex and callback around it.
#pragma once

#include "loaded_driver.h"

#include <gtest/gtest.h>

#include <QMutex>

#include <array>
#include <functional>
#include <string>
#include <vector>

/// Base of the black-box tests: loads the plug-in anew for every test, so that no state is left
/// over.
class DriverFixture : public ::testing::Test {
protected:
    DriverFixture();
    ~DriverFixture() override;

    /// Starts the link with this property text and records every callback from then on.
    void init(const char *propertyText = "1#0#0#3#16");

    /// Next frame as upper-case hex with blanks between the bytes; "" when there is nothing to
    /// send.
    std::string nextFrame();

    /// Hands in `hex` (CRC included) as the reply; gives the result code.
    int reply(const std::string &hex);

    /// Hands in the payload bytes `hex` with the right CRC behind them.
    int replyWithCrc(const std::string &hex);

    /// Visible values of `count` registers as hex bytes, low byte first.
    std::string data(int station, const char *type, int address, int count);

    /// Queues a write of these values.
    void set(int station, const char *type, int address, const std::vector<int> &values,
             int varKind = 0);

    LoadedDriver dx4;
    korvane_dx4 &state;
    std::vector<unsigned char> hostBlock;
    std::vector<unsigned short> recipeBuffer;
    QMutex mutex;
    FRAME_PRO frame; ///< what nextFrame() was given last
    QString errorText; ///< what the last reply was given

    /// Every callback so far as "link station name address", in order.
    std::vector<std::string> calls;

    /// Runs inside each callback, after it was recorded.
    std::function<void(int linkId, int station, const QString &name, int address)> insideCallback;

private:
    static void record(int linkId, int station, QString &name, int address);
};

/// An address record as a host's screen would ask for it.
KEY_ADDRESS keyAddress(int station, const char *type, int address, int count, int subAddress = 0);

/// A recipe record.
_RCP_VAR_PRO recipeVar(int linkId, int station, const char *type, int address, int count,
                       int bufferOffset);

/// Bytes as upper-case hex with blanks between.
std::string toHex(const unsigned char *bytes, int length);

/// The bytes of a hex text with or without blanks.
std::vector<unsigned char> fromHex(const std::string &hex);

/// Payload with its Modbus CRC behind it, computed bit by bit, apart from the driver's own code.
std::vector<unsigned char> withCrc(std::vector<unsigned char> payload);
