// SPDX-License-Identifier: MIT
// A host that has a symbol `driver` of its own.
#include "host_symbol.h"

#include "driver_fixture.h"

#include <dlfcn.h>

namespace {

class HostSymbol : public DriverFixture { };

// Without this the other tests would prove nothing.
TEST_F(HostSymbol, IsWhatANameLookupFindsFirst)
{
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "driver"), hostSymbol());
}

TEST_F(HostSymbol, IsNotTheObjectThatThePluginHandsOut)
{
    EXPECT_NE(static_cast<const void *>(&state), hostSymbol());
}

TEST_F(HostSymbol, IsUntouchedByAWholeCycle)
{
    markHostSymbol();

    init("1#0#0#3#16");
    QList<KEY_ADDRESS> addresses { keyAddress(1, "D", 5, 1) };
    dx4.addrMerge(addresses);
    set(1, "F", 5, { 0x1234 });
    EXPECT_EQ(nextFrame(), "01 06 F0 05 12 34 A7 BC");
    EXPECT_EQ(replyWithCrc("01 06 F0 05 12 34"), 1);
    EXPECT_EQ(nextFrame(), "01 03 D0 05 00 01 AC CB");
    EXPECT_EQ(replyWithCrc("01 03 02 56 78"), 1);

    EXPECT_EQ(markedBytes(), 4096U);
    EXPECT_EQ(data(1, "D", 5, 1), "78 56");
}

TEST_F(HostSymbol, LeavesThePluginItsOwnObject)
{
    init("7#0#0#3#16");

    EXPECT_EQ(state.linkId, 7);
    EXPECT_EQ(state.blockSize, 16);
    EXPECT_EQ(state.spare3, 1);
    EXPECT_EQ(state.regTypeList.size(), 6);
}

class GloballyLoaded : public ::testing::Test {
protected:
    GloballyLoaded()
        : library(dlopen(KORVANE_PLUGIN_FILE, RTLD_NOW | RTLD_GLOBAL))
    {
    }
    ~GloballyLoaded() override
    {
        if (library)
            dlclose(library);
    }

    void *library;
};

TEST_F(GloballyLoaded, PluginUsesItsOwnObject)
{
    ASSERT_NE(library, nullptr);
    markHostSymbol();
    const auto initProperty =
        reinterpret_cast<decltype(&intf_initProperty)>(dlsym(library, "intf_initProperty"));
    const auto *object = static_cast<const korvane_dx4 *>(dlsym(library, "driver"));
    ASSERT_NE(initProperty, nullptr);
    ASSERT_NE(object, nullptr);

    initProperty(nullptr, 0, nullptr, nullptr, "9#0#0#3#16", nullptr);

    EXPECT_EQ(object->linkId, 9);
    EXPECT_EQ(markedBytes(), 4096U);
}

} // namespace
