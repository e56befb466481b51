// SPDX-License-Identifier: MIT
// Calls that overlap, which a debug build notices.
#include "driver_fixture.h"

#include <thread>

namespace {

class OverlappingCalls : public DriverFixture {
protected:
    OverlappingCalls()
    {
        ::testing::FLAGS_gtest_death_test_style = "threadsafe";
        init();
        data(1, "D", 4, 1);
        KEY_ADDRESS read;
        read.station = 1;
        read.regType = QStringLiteral("D");
        read.address = 4;
        read.count = 1;
        read.subAddress = -1;
        dx4.addConditionRead(read, 0);
        nextFrame();
    }

    /// A reply with a new value: the driver calls back while it runs.
    void answer() { replyWithCrc("01 03 02 00 2A"); }
};

} // namespace

TEST_F(OverlappingCalls, EndTheProgramAndNameBothCalls)
{
    insideCallback = [this](int, int, const QString &, int) {
        std::thread other([this] {
            unsigned char value[2] = {};
            dx4.getData(1, QStringLiteral("D"), 4, 1, value);
        });
        other.join();
    };

    EXPECT_DEATH(answer(),
                 "korvane_dx4: intf_getData was called while intf_dealRcvFrame ran on another "
                 "thread; the driver takes one call at a time");
}

TEST_F(OverlappingCalls, FromTheCallbackOfTheSameThreadAreNone)
{
    std::string seen;
    insideCallback = [&](int, int, const QString &, int) { seen = data(1, "D", 4, 1); };

    answer();

    EXPECT_EQ(seen, "2A 00");
}

TEST_F(OverlappingCalls, OneAfterTheOtherFromSeveralThreadsAreNone)
{
    answer();
    std::string seen;

    std::thread other([&] { seen = data(1, "D", 4, 1); });
    other.join();

    EXPECT_EQ(seen, "2A 00");
}
