// SPDX-License-Identifier: MIT
// The dynamic symbols of the built file, name by name.
#include "command_output.h"

#include <QtGlobal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAreArray;

const std::vector<std::string> exportedNames = {
    "driver",
    "intf_SetDriverPropertyPage",
    "intf_addConditionRead",
    "intf_addrMerge",
    "intf_checkAddr",
    "intf_checkAddrValidity",
    "intf_dealRcvFrame",
    "intf_getData",
    "intf_getDriverParameter",
    "intf_getDriverPropertyPage",
    "intf_getProtocolType",
    "intf_getRegDiscription",
    "intf_getRegListByType",
    "intf_getSendFrame",
    "intf_initProperty",
    "intf_multiCopy",
    "intf_setAddrValueChangeCallBack",
    "intf_setData",
    "intf_setRcpAddress",
};

struct Symbol {
    std::string name;
    std::string kind; ///< letter of nm: T code, B zeroed data, u unique, W weak
};

/// Defined dynamic symbols of the plug-in as nm lists them: value, kind, name.
std::vector<Symbol> definedSymbols()
{
    std::vector<Symbol> symbols;
    for (const std::string &line : linesOf(KORVANE_NM " -D --defined-only " KORVANE_PLUGIN_FILE)) {
        std::istringstream words(line);
        std::string value;
        Symbol symbol;
        words >> value >> symbol.kind >> symbol.name;
        symbols.push_back(symbol);
    }
    return symbols;
}

std::vector<std::string> definedNames()
{
    std::vector<std::string> names;
    for (const Symbol &symbol : definedSymbols())
        names.push_back(symbol.name);
    return names;
}

/// Names between "global:" and "local:" of the linker's export list.
std::vector<std::string> namesOfExportList()
{
    std::vector<std::string> names;
    std::ifstream file(KORVANE_EXPORT_LIST);
    bool global = false;
    for (std::string word; file >> word;) {
        if (word == "global:" || word == "local:")
            global = word == "global:";
        else if (global)
            names.push_back(word.substr(0, word.find(';')));
    }
    return names;
}

TEST(ExportedSymbols, AreTheEighteenEntryPointsAndTheObject)
{
    EXPECT_EQ(exportedNames.size(), 19U);
    EXPECT_THAT(definedNames(), UnorderedElementsAreArray(exportedNames));
}

TEST(ExportedSymbols, AreThoseOfTheExportList)
{
    EXPECT_THAT(namesOfExportList(), UnorderedElementsAreArray(exportedNames));
}

TEST(ExportedSymbols, AreCodeButForTheObject)
{
    for (const Symbol &symbol : definedSymbols())
        EXPECT_EQ(symbol.kind, symbol.name == "driver" ? "B" : "T") << symbol.name;
}

// The sanitizers add a guard zone to the symbol, and their own symbols come with the program.
#if !KORVANE_SANITIZED

// Zero-initialised storage is what starts every integer and pointer of the object at zero.
TEST(ExportedSymbols, HoldTheObjectAtItsFullSize)
{
    const std::vector<std::string> lines =
        linesOf(KORVANE_NM " -D -S --radix=d --defined-only " KORVANE_PLUGIN_FILE);

    std::string size;
    for (const std::string &line : lines) {
        std::istringstream words(line);
        std::string value, length, kind, name;
        words >> value >> length >> kind >> name;
        if (name == "driver")
            size = length;
    }
    const long withWidePointers = QT_VERSION_MAJOR == 5 ? 2280 : 2456;
    EXPECT_EQ(std::stol(size), sizeof(void *) == 4 ? 2204 : withWidePointers);
}

TEST(BuiltFile, LeavesNoSymbolUndefined)
{
    const std::vector<std::string> said =
        linesOf(KORVANE_UNDEFINED_SYMBOLS_OF " " KORVANE_PLUGIN_FILE);

    EXPECT_THAT(said, Contains(HasSubstr("libc.so.6")));
    EXPECT_THAT(said, Each(Not(HasSubstr("undefined symbol"))));
}

#endif

TEST(BuiltFile, NeedsNothingButQtCoreAndTheRuntimes)
{
    std::vector<std::string> needed;
    for (const std::string &line : linesOf(KORVANE_READELF " -dW " KORVANE_PLUGIN_FILE)) {
        if (line.find("(NEEDED)") == std::string::npos)
            continue;
        const std::size_t open = line.find('[');
        needed.push_back(line.substr(open + 1, line.find(']') - open - 1));
    }

    EXPECT_FALSE(needed.empty());
    EXPECT_THAT(needed,
                Each(AnyOf("libQt5Core.so.5", "libQt6Core.so.6", "libstdc++.so.6", "libc.so.6",
                           "libgcc_s.so.1", "libm.so.6", StartsWith("libasan.so."),
                           StartsWith("libubsan.so."))));
}

TEST(BuiltFile, BindsItsOwnNamesToItself)
{
    std::string dynamicSection;
    for (const std::string &line : linesOf(KORVANE_READELF " -dW " KORVANE_PLUGIN_FILE))
        dynamicSection += line + '\n';

    EXPECT_THAT(dynamicSection, HasSubstr("SYMBOLIC"));
}

TEST(BuiltFile, IsNamedForItsHosts)
{
    const std::string file = KORVANE_PLUGIN_FILE;

    EXPECT_EQ(file.substr(file.rfind('/') + 1), "libkorvane_dx4.so");
}

} // namespace
