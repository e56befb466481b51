// SPDX-License-Identifier: MIT
// What the documents say about the simulator is what it does.
#include "simulator/fault_file.h"
#include "simulator/inverter.h"

#include "child_process.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

using namespace dx4::sim;

namespace {

std::string contentOf(const std::string &path)
{
    std::ifstream stream(path);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::set<std::string> matchesOf(const std::string &text, const std::string &pattern)
{
    std::set<std::string> found;
    const std::regex expression(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        found.insert((*match)[1]);
    return found;
}

} // namespace

TEST(SimulatorDocument, FaultFileOfTheExampleIsGood)
{
    const std::string document = contentOf(SIMULATOR_DOCUMENT);
    const std::size_t begin = document.find("```toml\n") + 8;

    const FaultFile file =
        parseFaults(document.substr(begin, document.find("```\n", begin) - begin), "example");

    EXPECT_EQ(file.error, "");
    EXPECT_EQ(file.seed, 7U);
    EXPECT_EQ(file.rules.size(), 4U);
}

TEST(SimulatorDocument, EveryKindOfFaultHasARow)
{
    const std::string document = contentOf(SIMULATOR_DOCUMENT);

    for (FaultKind kind : allFaultKinds())
        EXPECT_NE(document.find("| `" + std::string(faultKindName(kind)) + "` |"),
                  std::string::npos)
            << faultKindName(kind);
}

TEST(SimulatorDocument, LimitsOfParametersAreThoseOfTheTable)
{
    const std::string document = contentOf(SIMULATOR_DOCUMENT);
    const std::regex row("\\| `(F8\\.\\d+)` \\|[^|]*\\|[^|]*\\| (\\d+) to (\\d+) \\| (\\d+) \\|");
    const Inverter inverter;
    int rows = 0;

    for (std::sregex_iterator match(document.begin(), document.end(), row), end; match != end;
         ++match, ++rows) {
        const std::uint16_t address = *registerByName((*match)[1]);
        const int lowest = std::stoi((*match)[2]);
        const int highest = std::stoi((*match)[3]);
        const auto accepts = [&inverter, address](int value) {
            return inverter.accepts(address, static_cast<std::uint16_t>(value));
        };

        EXPECT_EQ(inverter.read(address), std::stoi((*match)[4])) << (*match)[1];
        EXPECT_TRUE(accepts(lowest) && accepts(highest)) << (*match)[1];
        EXPECT_FALSE(accepts(highest + 1)) << (*match)[1];
        EXPECT_TRUE(lowest == 0 || !accepts(lowest - 1)) << (*match)[1];
    }

    EXPECT_EQ(rows, 9);
}

TEST(SimulatorManual, NamesTheOptionsThatHelpNames)
{
    const std::string help = outputOf({ SIMULATOR_FILE, "--help" });
    const std::string manual = contentOf(SIMULATOR_MANUAL);

    const std::set<std::string> inHelp = matchesOf(help, "(?:^|\n)  (?:-h,)?--([a-z]+)");

    EXPECT_EQ(inHelp, matchesOf(manual, "\n\\.It Fl Fl ([a-z]+)"));
    EXPECT_EQ(inHelp.size(), 15U);
}
