// SPDX-License-Identifier: MIT
// A descriptor with an owner.
#include "host/base/own_descriptor.h"

#include <gtest/gtest.h>

#include <system_error>

#include <fcntl.h>
#include <unistd.h>

using namespace dx4::host;

TEST(OwnDescriptorTest, IsClosedAtItsOwnersEnd)
{
    int number = -1;
    {
        const OwnDescriptor owned(open("/dev/null", O_RDONLY | O_CLOEXEC), "open");
        number = owned.number();
        EXPECT_NE(fcntl(number, F_GETFD), -1);
    }

    EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

TEST(OwnDescriptorTest, MayHaveTheNumberZero)
{
    const int input = dup(0);
    close(0);

    {
        const OwnDescriptor owned(open("/dev/null", O_RDONLY | O_CLOEXEC), "open");
        EXPECT_EQ(owned.number(), 0);
    }

    dup2(input, 0);
    close(input);
}

TEST(OwnDescriptorTest, SaysWhyThereIsNone)
{
    std::error_code code;
    try {
        const OwnDescriptor none(open("/no/such/file", O_RDONLY | O_CLOEXEC), "open");
    } catch (const std::system_error &error) {
        code = error.code();
    }

    EXPECT_EQ(code, std::errc::no_such_file_or_directory);
}
