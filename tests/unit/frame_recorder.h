// SPDX-License-Identifier: MIT
// Base of the encoder tests: starts with no frames and shows those that were appended.
#pragma once

#include "korvane_dx4.h"

#include <gtest/gtest.h>

#include <string>

class FrameRecorder : public ::testing::Test {
protected:
    FrameRecorder() { driver.sendFrames.clear(); }
    ~FrameRecorder() override { driver.sendFrames.clear(); }

    /// A variable of station 1 with 0x1234 in each register of its data.
    static VARIABLE variable(const char *type, int address, int count)
    {
        VARIABLE made;
        made.station = 1;
        made.regType = QString::fromLatin1(type);
        made.address = address;
        made.count = count;
        for (int i = 0; i < 1024; i += 2) {
            made.data[i] = 0x34;
            made.data[i + 1] = 0x12;
        }
        return made;
    }

    /// The bytes to send of the frame appended last, "" when there is none.
    static std::string lastFrame()
    {
        if (driver.sendFrames.isEmpty())
            return {};
        const FRAME_PRO &frame = driver.sendFrames.constLast();
        std::string text;
        for (int i = 0; i < frame.sendLength; ++i) {
            if (i > 0)
                text += ' ';
            text += "0123456789ABCDEF"[frame.frame[i] >> 4];
            text += "0123456789ABCDEF"[frame.frame[i] & 0xF];
        }
        return text;
    }
};
