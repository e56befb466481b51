// SPDX-License-Identifier: MIT
// Any bytes as a recording: frames that come back when they are written, or an error.
#include "capture/pcap.h"
#include "expect.h"
#include "fuzz_target.h"

#include <sstream>

using namespace dx4::capture;

namespace {

bool isSame(const Frame &a, const Frame &b)
{
    return a.time == b.time && a.sender == b.sender && a.bytes == b.bytes;
}

/// Seconds have 32 bits in a file; what carries over from the microseconds may not fit.
bool canBeWritten(const Frame &frame)
{
    return frame.time < std::chrono::seconds(0x100000000LL) && frame.bytes.size() <= 65507;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    std::string error;

    const auto frames = readPcap(in, &error);

    expect(frames.has_value() == error.empty(), "there are frames or an error");
    if (!frames)
        return 0;
    for (const Frame &frame : *frames) {
        if (!canBeWritten(frame))
            continue;
        std::stringstream file;
        PcapWriter(file).add(frame);
        const auto again = readPcap(file, &error);
        expect(again && again->size() == 1 && isSame(again->front(), frame),
               "a frame comes back when it was written");
    }
    return 0;
}
