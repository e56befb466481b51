// SPDX-License-Identifier: MIT
// Tests with widgets on a screen in memory.
#include "panel_fixture.h"

#include <gtest/gtest.h>

// Qt's screen in memory is never freed. Which leak is its own is seen only in whole stacks.
#if defined(__SANITIZE_ADDRESS__)
extern "C" __attribute__((visibility("default"))) const char *__asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}

extern "C" __attribute__((visibility("default"))) const char *__lsan_default_options()
{
    return "suppressions=" LEAKS_OF_QT ":print_suppressions=0";
}
#endif

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Programs that tests start.
    qputenv("ASAN_OPTIONS", "fast_unwind_on_malloc=0");
    qputenv("LSAN_OPTIONS", "suppressions=" LEAKS_OF_QT ":print_suppressions=0");
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    const ScreenInMemory screen(argc, argv);
    return RUN_ALL_TESTS();
}
