// SPDX-License-Identifier: MIT
// The simulator starts with what the tool has read.
#include "bench.h"

#include <gtest/gtest.h>

TEST(StartValues, OfADumpAreThoseThatWereRead)
{
    Bench bench;
    bench.serve("1");
    bench.tell("set F8.2 70");
    bench.tell("set Fc.13 4660");
    ASSERT_EQ(bench.run("dx4 params dump first.txt").code, 0);
    const std::string first = contentOf(bench.folder() + "/first.txt");
    ASSERT_NE(first.find("F 8.2 = 70\n"), std::string::npos);

    ChildProcess another({ SIMULATOR_FILE, "--pty", "--speed", "0", "--turnaround", "0", "--values",
                           bench.folder() + "/first.txt" });
    const std::string device = another.readLine().substr(4);
    ASSERT_EQ(bench.run("dx4 params dump --port " + device + " second.txt").code, 0);

    EXPECT_EQ(contentOf(bench.folder() + "/second.txt"), first);
}

TEST(StartValues, RefusedRegistersAreRefusedAgain)
{
    Bench bench;
    bench.run("printf 'station 1\\nF 8.2 = 70\\nF 8.3 refused\\n' >first.txt");
    ChildProcess inverter({ SIMULATOR_FILE, "--pty", "--speed", "0", "--turnaround", "0",
                            "--values", bench.folder() + "/first.txt" });
    const std::string device = inverter.readLine().substr(4);

    ASSERT_EQ(bench.run("dx4 params dump --port " + device + " second.txt").code, 0);

    const std::string second = contentOf(bench.folder() + "/second.txt");
    EXPECT_NE(second.find("F 8.2 = 70\nF 8.3 refused\nF 8.4 = 400\n"), std::string::npos);
}
