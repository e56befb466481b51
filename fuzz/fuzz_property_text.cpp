// SPDX-License-Identifier: MIT
// Any bytes as property text, against the model.
#include "driver_api.h"
#include "driver_model.h"
#include "expect.h"
#include "fuzz_target.h"

#include <vector>

namespace {

struct Host {
    std::vector<unsigned char> block = std::vector<unsigned char>(60117, 0);
    unsigned short recipe[4] = {};
    QMutex mutex;
};

template <typename State> std::vector<int> settingsOf(const State &state)
{
    return { state.linkId,        state.writesLocalOnly, state.property2, state.retryLimit,
             state.blockSize,     state.bitBlockSize,    state.phase,     state.tryCount,
             state.failCount,     state.lastFailed,      state.spare3,    state.rcpIndex,
             state.writeBlockSize };
}

// The settings of the input before must stay when this one has too few fields.
template <typename State> void resetSettings(State &state)
{
    state.linkId = 91;
    state.writesLocalOnly = 92;
    state.property2 = 93;
    state.retryLimit = 94;
    state.blockSize = 95;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Host host;
    static model::DriverModel expected;
    // Exactly as long as the text, so that reading behind its end is seen.
    std::vector<char> text(data, data + size);
    text.push_back('\0');
    resetSettings(driver);
    resetSettings(expected);

    int result = -5;
    int expectedResult = -5;
    const int done =
        intf_initProperty(host.block.data(), 7, host.recipe, &result, text.data(), &host.mutex);
    expected.initProperty(host.block.data(), 7, host.recipe, &expectedResult, text.data(),
                          &host.mutex);

    expect(done == 1 && result == expectedResult, "intf_initProperty always succeeds");
    expect(settingsOf(driver) == settingsOf(expected), "the settings are those of the model");
    expect(driver.readList.isEmpty() && driver.writeList.isEmpty() && driver.conditionList.isEmpty()
               && driver.dataAreas.isEmpty() && driver.sendFrames.isEmpty(),
           "the link starts empty");
    return 0;
}
