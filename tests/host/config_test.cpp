// SPDX-License-Identifier: MIT
// Configuration files: what they say, and what is said about a wrong one.
#include "host/config/config.h"
#include "host/config/control_config.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace dx4::host;
using std::chrono::milliseconds;
using Texts = std::vector<std::string>;

namespace {

struct ConfigRow {
    const char *name;
    const char *text;
    Texts errors;
};

std::string nameOf(const ::testing::TestParamInfo<ConfigRow> &row)
{
    return row.param.name;
}

Texts textsOf(const QVector<ConfigError> &errors)
{
    Texts texts;
    for (const ConfigError &error : errors)
        texts.push_back(error.in(QStringLiteral("a.toml")).toStdString());
    return texts;
}

std::unique_ptr<Plugin> privateCopy()
{
    return Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy);
}

Texts planErrors(const char *text)
{
    QVector<ConfigError> errors;
    const auto config = parseConfig(text, &errors);
    Planner planner(privateCopy(), LinkSettings());
    if (config)
        planOf(*config, planner, &errors);
    return textsOf(errors);
}

class ConfigErrors : public ::testing::TestWithParam<ConfigRow> { };

} // namespace

TEST(Config, TheExampleIsRead)
{
    QVector<ConfigError> errors;

    const auto config = loadConfig(QStringLiteral(KORVANE_EXAMPLES "/two-drives.toml"), &errors);

    ASSERT_TRUE(config.has_value()) << textsOf(errors).at(0);
    EXPECT_EQ(config->line.speed, 19200);
    EXPECT_EQ(config->line.parity, Parity::None);
    EXPECT_EQ(config->line.responseTimeout, milliseconds(200));
    EXPECT_EQ(config->link.retryLimit, 3);
    EXPECT_EQ(config->stop.controlWord, 0);
    ASSERT_EQ(config->stations.size(), 2);
    EXPECT_EQ(config->stations.at(0).name, QStringLiteral("feed pump"));
    EXPECT_EQ(config->stations.at(0).registers.at(0).scaling.text(4998),
              QStringLiteral("49.98 Hz"));
    EXPECT_EQ(config->stations.at(0).registers.at(1).scaling.text(566), QStringLiteral("566 V"));
    EXPECT_EQ(config->stations.at(0).registers.at(2).scaling.text(0xFFFE),
              QStringLiteral("-0.2 °C"));
    EXPECT_EQ(config->stations.at(1).extraGap, milliseconds(5));
}

TEST(Config, TheExampleCanBePlanned)
{
    QVector<ConfigError> errors;
    const auto config = loadConfig(QStringLiteral(KORVANE_EXAMPLES "/two-drives.toml"), &errors);
    Planner planner(privateCopy(), config->link);

    const auto plan = planOf(*config, planner, &errors);

    ASSERT_TRUE(plan.has_value()) << textsOf(errors).at(0);
    EXPECT_EQ(plan->wantedRegisters, 19);
}

TEST(Config, ABlockSizeThatCannotBeIsSaidThoughNothingIsPolled)
{
    QVector<ConfigError> errors;
    const auto config = parseConfig("[[station]]\naddress = 1\n", &errors);
    LinkSettings settings;
    settings.blockSize = 0;
    Planner planner(privateCopy(), settings);

    const auto plan = planOf(*config, planner, &errors);

    EXPECT_FALSE(plan.has_value());
    EXPECT_EQ(textsOf(errors), Texts { "a.toml: block size 0; it can be 1 to 123" });
}

TEST(Config, WhatIsNotSaidStaysAtItsDefault)
{
    const auto config =
        parseConfig("[line]\nport = \"/dev/ttyS0\"\n[[station]]\naddress = 9\n", nullptr);

    ASSERT_TRUE(config.has_value());
    EXPECT_EQ(config->line.speed, 9600);
    EXPECT_EQ(config->line.parity, Parity::None);
    EXPECT_EQ(config->line.responseTimeout, milliseconds(300));
    EXPECT_EQ(config->line.stopBits, 1);
    EXPECT_EQ(config->line.gap, GapRule::Standard);
    EXPECT_EQ(config->line.echo, EchoMode::Auto);
    EXPECT_FALSE(config->line.kernelSwitchesDirection);
    EXPECT_FALSE(config->line.isShared);
    EXPECT_EQ(config->link.retryLimit, 3);
    EXPECT_EQ(config->link.blockSize, 16);
    EXPECT_EQ(config->stop.confirmWithin, milliseconds(2000));
    EXPECT_FALSE(config->stop.broadcast);
    EXPECT_EQ(config->stations.at(0).extraGap, milliseconds(0));
    EXPECT_FALSE(config->stop.controlWord.has_value());
    EXPECT_TRUE(config->stations.at(0).registers.isEmpty());
}

TEST(Config, WhatAWindowHasToKnowIsReadByItself)
{
    const auto control = parseControl("[stop]\ncontrol_word = 0\nuser_patience_ms = 1500\n"
                                      "[control]\nrun = 17\nreverse = 18\n"
                                      "[[station]]\naddress = 1\n",
                                      nullptr);

    ASSERT_TRUE(control.has_value());
    EXPECT_EQ(control->run, 17);
    EXPECT_EQ(control->reverse, 18);
    EXPECT_EQ(control->userPatience, milliseconds(1500));
}

TEST(Config, AWindowIsToldOfEveryErrorToo)
{
    QVector<ConfigError> errors;

    EXPECT_FALSE(parseControl("[control]\nrun = -1\n", &errors).has_value());

    ASSERT_EQ(errors.size(), 2);
    EXPECT_EQ(errors.at(0).in(QStringLiteral("a.toml")).toStdString(),
              "a.toml: no station; begin one by [[station]]");
    EXPECT_EQ(errors.at(1).in(QStringLiteral("a.toml")).toStdString(),
              "a.toml:2: run: expected a whole number from 0 to 65535");
}

TEST(Config, WithoutWordsForItOneStartsADriveAndNoneReversesIt)
{
    const auto control = parseControl("[[station]]\naddress = 1\n", nullptr);

    ASSERT_TRUE(control.has_value());
    EXPECT_EQ(control->run, 1);
    EXPECT_FALSE(control->reverse.has_value());
    EXPECT_EQ(control->userPatience, milliseconds(0));
}

TEST(Config, EveryKeyIsRead)
{
    const auto config =
        parseConfig("[line]\nport = \"p\"\nspeed = 300\nparity = \"odd\"\n"
                    "stop_bits = 2\ntimeout_ms = 7\ngap = \"3.5 characters\"\necho = \"yes\"\n"
                    "rs485 = true\nshared = true\n"
                    "[link]\ntries = 9\nblock_size = 99\n"
                    "[stop]\ncontrol_word = 6\nconfirm_ms = 11\nbroadcast = true\n"
                    "user_patience_ms = 1500\n"
                    "[control]\nrun = 17\nreverse = 18\n"
                    "[[station]]\naddress = 247\nname = \"s\"\n"
                    "extra_gap_ms = 13\n"
                    "[[station.register]]\nat = \"D 5\"\nname = \"r\"\n"
                    "unit = \"V\"\ndecimals = 3\nscale = 0.5\noffset = -4\n"
                    "signed = true\n"
                    "[states]\n15 = \"remote\"\n"
                    "[faults]\n0x11 = \"door open\"\n",
                    nullptr);

    ASSERT_TRUE(config.has_value());
    EXPECT_EQ(config->line.port, QStringLiteral("p"));
    EXPECT_EQ(config->line.speed, 300);
    EXPECT_EQ(config->line.parity, Parity::Odd);
    EXPECT_EQ(config->line.stopBits, 2);
    EXPECT_EQ(config->line.responseTimeout, milliseconds(7));
    EXPECT_EQ(config->line.gap, GapRule::Characters);
    EXPECT_EQ(config->line.echo, EchoMode::Yes);
    EXPECT_TRUE(config->line.kernelSwitchesDirection);
    EXPECT_TRUE(config->line.isShared);
    EXPECT_EQ(config->link.retryLimit, 9);
    EXPECT_EQ(config->link.blockSize, 99);
    EXPECT_EQ(config->stop.controlWord, 6);
    EXPECT_EQ(config->stop.confirmWithin, milliseconds(11));
    EXPECT_TRUE(config->stop.broadcast);
    ASSERT_EQ(config->stations.size(), 1);
    const StationConfig &station = config->stations.at(0);
    EXPECT_EQ(station.address, 247);
    EXPECT_EQ(station.name, QStringLiteral("s"));
    EXPECT_EQ(station.extraGap, milliseconds(13));
    ASSERT_EQ(station.registers.size(), 1);
    const RegisterConfig &wanted = station.registers.at(0);
    EXPECT_EQ(wanted.at, QStringLiteral("D 5"));
    EXPECT_EQ(wanted.name, QStringLiteral("r"));
    EXPECT_EQ(wanted.scaling.text(0xFFFE), QStringLiteral("-5.000 V"));
    EXPECT_EQ(config->states, (QMap<int, QString> { { 15, QStringLiteral("remote") } }));
    EXPECT_EQ(config->faults, (QMap<int, QString> { { 17, QStringLiteral("door open") } }));
}

TEST(Config, NamesMayBeLeftOut)
{
    const auto config = parseConfig("[[station]]\naddress = 1\n"
                                    "register = [ { at = \"D 0\" }, { at = \"D 1-3\" } ]\n"
                                    "[[station]]\naddress = 2\n",
                                    nullptr);

    ASSERT_TRUE(config.has_value());
    EXPECT_EQ(config->stations.size(), 2);
    EXPECT_EQ(config->stations.at(0).registers.size(), 2);
}

TEST(Config, ARegistersScaleIsOneUnlessItIsSaid)
{
    const auto config =
        parseConfig("[[station]]\naddress = 1\n[[station.register]]\nat = \"D 0\"\n", nullptr);

    ASSERT_TRUE(config.has_value());
    EXPECT_EQ(config->stations.at(0).registers.at(0).scaling.text(65535), QStringLiteral("65535"));
    EXPECT_EQ(config->stations.at(0).registers.at(0).line, 3);
}

TEST(Config, AFileThatIsNotReadNeedNotSayWhy)
{
    EXPECT_FALSE(loadConfig(QStringLiteral(KORVANE_EXAMPLES "/none.toml"), nullptr).has_value());
}

TEST(Config, APlanThatCannotBeMadeNeedNotSayWhy)
{
    const auto config =
        parseConfig("[[station]]\naddress = 1\nregister = [ { at = \"D 40\" } ]\n", nullptr);
    Planner planner(privateCopy(), LinkSettings());

    ASSERT_TRUE(config.has_value());
    EXPECT_FALSE(planOf(*config, planner, nullptr).has_value());
}

namespace {

/// A key with a whole number, in a file where `%` stands for the number.
struct NumberRow {
    const char *name;
    const char *text;
    int lowest;
    int highest;
};

class ConfigNumbers : public ::testing::TestWithParam<NumberRow> {
protected:
    static bool isTaken(int number)
    {
        QByteArray text(GetParam().text);
        text.replace('%', QByteArray::number(number));
        return parseConfig(text, nullptr).has_value();
    }
};

} // namespace

TEST_P(ConfigNumbers, ReachFromTheirLowestToTheirHighest)
{
    EXPECT_FALSE(isTaken(GetParam().lowest - 1));
    EXPECT_TRUE(isTaken(GetParam().lowest));
    EXPECT_TRUE(isTaken(GetParam().highest));
    EXPECT_FALSE(isTaken(GetParam().highest + 1));
}

INSTANTIATE_TEST_SUITE_P(
    Config, ConfigNumbers,
    ::testing::Values(
        NumberRow { "speed", "line.port=\"p\"\nline.speed=%\n[[station]]\naddress=1", 300,
                    4000000 },
        NumberRow { "stop_bits", "line.port=\"p\"\nline.stop_bits=%\n[[station]]\naddress=1", 1,
                    2 },
        NumberRow { "timeout_ms", "line.port=\"p\"\nline.timeout_ms=%\n[[station]]\naddress=1", 1,
                    60000 },
        NumberRow { "tries", "line.port=\"p\"\nlink.tries=%\n[[station]]\naddress=1", 1, 100 },
        NumberRow { "block_size", "line.port=\"p\"\nlink.block_size=%\n[[station]]\naddress=1", 1,
                    123 },
        NumberRow { "control_word", "line.port=\"p\"\nstop.control_word=%\n[[station]]\naddress=1",
                    0, 65535 },
        NumberRow { "confirm_ms", "line.port=\"p\"\nstop.confirm_ms=%\n[[station]]\naddress=1", 1,
                    60000 },
        NumberRow { "user_patience_ms",
                    "stop.control_word=0\nstop.user_patience_ms=%\n[[station]]\naddress=1", 1000,
                    60000 },
        NumberRow { "run", "control.run=%\n[[station]]\naddress=1", 0, 65535 },
        NumberRow { "reverse", "control.reverse=%\n[[station]]\naddress=1", 0, 65535 },
        NumberRow { "address", "line.port=\"p\"\n[[station]]\naddress=%", 1, 247 },
        NumberRow { "extra_gap_ms", "line.port=\"p\"\n[[station]]\naddress=1\nextra_gap_ms=%", 0,
                    1000 },
        NumberRow { "states", "[states]\n% = \"remote\"\n[[station]]\naddress=1", 0, 15 },
        NumberRow { "faults", "[faults]\n% = \"overheat\"\n[[station]]\naddress=1", 0, 65535 },
        NumberRow { "decimals",
                    "line.port=\"p\"\n[[station]]\naddress=1\nregister=[{at=\"D 0\",decimals=%}]",
                    0, 6 }),
    [](const auto &row) { return std::string(row.param.name); });

TEST(Config, AMissingFileIsAnErrorOfTheFile)
{
    QVector<ConfigError> errors;

    const auto config = loadConfig(QStringLiteral(KORVANE_EXAMPLES "/none.toml"), &errors);

    EXPECT_FALSE(config.has_value());
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.at(0).line, 0);
    EXPECT_EQ(textsOf(errors).at(0), "a.toml: No such file or directory");
}

TEST_P(ConfigErrors, AreNamedWithTheirLine)
{
    QVector<ConfigError> errors;

    const auto config = parseConfig(GetParam().text, &errors);

    EXPECT_FALSE(config.has_value());
    EXPECT_EQ(textsOf(errors), GetParam().errors);
}

TEST(Config, PortMayBeLeftToTheHost)
{
    const auto config = parseConfig("[line]\nspeed = 19200\n[[station]]\naddress = 1\n", nullptr);

    ASSERT_TRUE(config.has_value());
    EXPECT_EQ(config->line.port, QString());
    EXPECT_EQ(config->line.speed, 19200);
}

INSTANTIATE_TEST_SUITE_P(
    Config, ConfigErrors,
    ::testing::Values(
        ConfigRow { "AStationIsNeeded",
                    "line.port = \"a\"\n",
                    { "a.toml: no station; begin one by [[station]]" } },
        ConfigRow { "StationsEndAt247",
                    "line.port = \"a\"\n[[station]]\naddress = 248\n",
                    { "a.toml:3: address: expected a whole number from 1 to 247" } },
        ConfigRow { "AStationStandsOnce",
                    "line.port = \"a\"\n[[station]]\naddress = 2\n[[station]]\naddress = 2\n",
                    { "a.toml:5: address: station 2 stands here twice" } },
        ConfigRow { "AStationNeedsItsAddress",
                    "line.port = \"a\"\n[[station]]\nname = \"x\"\n",
                    { "a.toml:2: address: is missing; expected a whole number from 1 to 247" } },
        ConfigRow { "AnUnknownKeyOfARegister",
                    "line.port = \"a\"\n[[station]]\naddress = 1\n"
                    "register = [ { at = \"D 0\", unite = \"Hz\" } ]\n",
                    { "a.toml:4: unite: no such key; expected one of at, name, unit, scale, "
                      "offset, signed, decimals" } },
        ConfigRow { "AnUnknownKeyOfAStation",
                    "line.port = \"a\"\n[[station]]\naddress = 1\nnumber = 1\n",
                    { "a.toml:4: number: no such key; expected one of address, name, "
                      "extra_gap_ms, register" } },
        ConfigRow {
            "AnUnknownTable",
            "line.port = \"a\"\n[[station]]\naddress = 1\n[stops]\n",
            { "a.toml:4: stops: no such key; expected one of line, link, stop, control, station, "
              "states, faults" } },
        ConfigRow { "AnUnknownKeyNamesTheKnown",
                    "[line]\nport = \"a\"\n[link]\nretries = 3\n[[station]]\naddress = 1\n",
                    { "a.toml:4: retries: no such key; expected one of tries, block_size" } },
        ConfigRow { "StatesAreBits",
                    "[states]\n16 = \"a\"\n[[station]]\naddress = 1\n",
                    { "a.toml:2: 16: expected a number from 0 to 15" } },
        ConfigRow { "FaultsHaveTexts",
                    "[faults]\n1 = 2\n[[station]]\naddress = 1\n",
                    { "a.toml:2: 1: expected a text such as \"overheat\"" } },
        ConfigRow { "FaultsAreSixteenBits",
                    "[faults]\n65536 = \"a\"\n[[station]]\naddress = 1\n",
                    { "a.toml:2: 65536: expected a number from 0 to 65535" } },
        ConfigRow { "AFaultsTextIsNotEmpty",
                    "[faults]\n1 = \"\"\n[[station]]\naddress = 1\n",
                    { "a.toml:2: 1: expected a text such as \"overheat\"" } },
        ConfigRow { "AFaultStandsOnceInBothNotations",
                    "[faults]\n0x11 = \"a\"\n17 = \"b\"\n[[station]]\naddress = 1\n",
                    { "a.toml:3: 17: number 17 stands here twice" } },
        ConfigRow { "ALineIsATable",
                    "line = 1\n[[station]]\naddress = 1\n",
                    { "a.toml:1: line: expected a table, begun by [line]" } },
        ConfigRow { "ARegisterThatIsNoTable",
                    "[[station]]\naddress = 1\nregister = [ \"D 0\" ]\n",
                    { "a.toml:3: register: expected tables, each begun by [[station.register]]" } },
        ConfigRow { "ARegisterNeedsItsAddress",
                    "[[station]]\naddress = 1\n[[station.register]]\nunit = \"V\"\n",
                    { "a.toml:3: at: is missing; expected a text such as \"D 0-9\"" } },
        ConfigRow { "AnAddressThatIsNoTextIsToldOnce",
                    "[[station]]\naddress = 1\n[[station.register]]\nat = 5\n",
                    { "a.toml:4: at: expected a text such as \"D 0-9\"" } },
        ConfigRow { "ARangeOfTwoHasNoName",
                    "[[station]]\naddress = 1\n[[station.register]]\n"
                    "at = \"D 0-1\"\nname = \"x\"\n",
                    { "a.toml:5: name: stands for one register; give each its own entry" } },
        ConfigRow { "AStationsNameIsTakenOnce",
                    "[[station]]\naddress = 1\nname = \"x\"\n"
                    "[[station]]\naddress = 2\nname = \"x\"\n",
                    { "a.toml:6: name: \"x\" is taken" } },
        ConfigRow { "AStationWithoutAddressIsNoneTwice",
                    "[[station]]\n[[station]]\n",
                    { "a.toml:1: address: is missing; expected a whole number from 1 to 247",
                      "a.toml:2: address: is missing; expected a whole number from 1 to 247" } },
        ConfigRow {
            "ANumberIsNoText",
            "[[station]]\naddress = 1\n[[station.register]]\nat = \"D 0\"\n"
            "scale = \"1\"\noffset = true\n",
            { "a.toml:5: scale: expected a number", "a.toml:6: offset: expected a number" } },
        ConfigRow { "ParityIsAWord",
                    "[line]\nport = \"a\"\nparity = \"E\"\n[[station]]\naddress = 1\n",
                    { "a.toml:3: parity: expected \"none\", \"even\", \"odd\"" } },
        ConfigRow { "TheGapIsAText",
                    "[line]\nport = \"a\"\ngap = 3.5\n[[station]]\naddress = 1\n",
                    { "a.toml:3: gap: expected \"standard\", \"3.5 characters\"" } },
        ConfigRow { "TheEchoIsAWord",
                    "[line]\nport = \"a\"\necho = true\n[[station]]\naddress = 1\n",
                    { "a.toml:3: echo: expected \"auto\", \"yes\", \"no\"" } },
        ConfigRow { "TheBroadcastIsTrueOrFalse",
                    "[stop]\ncontrol_word = 0\nbroadcast = 1\n[[station]]\naddress = 1\n",
                    { "a.toml:3: broadcast: expected true or false" } },
        ConfigRow { "ABroadcastNeedsAControlWord",
                    "[stop]\nbroadcast = true\n[[station]]\naddress = 1\n",
                    { "a.toml:2: broadcast: there is no control_word to send" } },
        ConfigRow { "TheKeysOfTheStop",
                    "[stop]\nword = 0\n[[station]]\naddress = 1\n",
                    { "a.toml:2: word: no such key; expected one of control_word, confirm_ms, "
                      "broadcast, user_patience_ms" } },
        ConfigRow { "APatienceNeedsAControlWord",
                    "[stop]\nuser_patience_ms = 2000\n[[station]]\naddress = 1\n",
                    { "a.toml:2: user_patience_ms: there is no control_word to send" } },
        ConfigRow { "TheKeysOfTheControl",
                    "[control]\nstart = 1\n[[station]]\naddress = 1\n",
                    { "a.toml:2: start: no such key; expected one of run, reverse" } },
        ConfigRow { "AStartIsNoStop",
                    "[stop]\ncontrol_word = 6\n[control]\nrun = 6\nreverse = 6\n"
                    "[[station]]\naddress = 1\n",
                    { "a.toml:4: run: is the control_word that stops",
                      "a.toml:5: reverse: is the control_word that stops" } },
        ConfigRow { "TheBlockSizeEndsAt123",
                    "line.port = \"a\"\nlink.block_size = 124\n[[station]]\naddress = 1\n",
                    { "a.toml:2: block_size: expected a whole number from 1 to 123" } },
        ConfigRow { "ARangeHasNoName",
                    "line.port = \"a\"\n[[station]]\naddress = 1\n[[station.register]]\n"
                    "at = \"D 0-3\"\nname = \"x\"\n",
                    { "a.toml:6: name: stands for one register; give each its own entry" } },
        ConfigRow {
            "ANameIsTakenOnce",
            "line.port = \"a\"\n[[station]]\naddress = 1\n"
            "register = [ { at = \"D 0\", name = \"x\" },\n{ at = \"D 1\", name = \"x\" } ]\n",
            { "a.toml:5: name: \"x\" is taken within the station" } },
        ConfigRow { "AScaleOfZeroHasNoWayBack",
                    "line.port = \"a\"\n[[station]]\naddress = 1\n[[station.register]]\n"
                    "at = \"D 0\"\nscale = 0\n",
                    { "a.toml:6: scale: expected a number other than 0" } },
        ConfigRow {
            "ANumberThatIsNone",
            "line.port = \"a\"\n[[station]]\naddress = 1\n[[station.register]]\n"
            "at = \"D 0\"\nscale = nan\noffset = inf\n",
            { "a.toml:6: scale: expected a number", "a.toml:7: offset: expected a number" } },
        ConfigRow { "AWholeNumberThatNoDoubleHolds",
                    "line.port = \"a\"\n[[station]]\naddress = 1\n[[station.register]]\n"
                    "at = \"D 0\"\nscale = 9223372036854775807\n",
                    { "a.toml:6: scale: expected a number" } },
        ConfigRow { "AnAddressInNoNotation",
                    "line.port = \"a\"\n[[station]]\naddress = 1\n[[station.register]]\n"
                    "at = \"F 17\"\n",
                    { "a.toml:5: at: not an address; write \"F 8.2\" or \"F 8.2-8.5\", with groups "
                      "0 to 9 and c" } },
        ConfigRow { "ATrueThatIsCutShort",
                    "[line]\nrs485 = tru\n[[station]]\naddress = 1\n",
                    { "a.toml:2: Error while parsing boolean: expected 'true', saw 'tru'" } },
        ConfigRow { "AFalseThatIsCutShort",
                    "[line]\nrs485 = fals\r\n[[station]]\naddress = 1\n",
                    { "a.toml:2: Error while parsing boolean: expected 'false', saw 'fals'" } },
        ConfigRow { "AStationInSingleBrackets",
                    "[line]\n[station]\naddress = 1\n",
                    { "a.toml:2: station: expected [[station]] in place of [station], as there may "
                      "be several" } },
        ConfigRow { "ARegisterInSingleBrackets",
                    "[[station]]\naddress = 1\n[station.register]\nat = \"D 0\"\n",
                    { "a.toml:3: register: expected [[station.register]] in place of "
                      "[station.register], as there may be several" } },
        ConfigRow { "AStationThatIsNoTable",
                    "station = 1\n",
                    { "a.toml:1: station: expected tables, each begun by [[station]]" } },
        ConfigRow { "AKeyWithALineBreak",
                    "[line]\n\"a\\nb\" = 1\n[[station]]\naddress = 1\n",
                    { "a.toml:2: a b: no such key; expected one of port, speed, parity, "
                      "stop_bits, timeout_ms, gap, echo, rs485, shared" } },
        ConfigRow { "ANameWithALineBreak",
                    "[[station]]\naddress = 1\nname = \"x\\n\"\n"
                    "[[station]]\naddress = 2\nname = \"x\\n\"\n",
                    { "a.toml:6: name: \"x\" is taken" } },
        ConfigRow {
            "ErrorsOfOneLineAreToldInTheOrderOfTheirKeys",
            "[[station]]\naddress = 1\nregister = [ { at = 5, name = 6, scale = \"a\" } ]\n",
            { "a.toml:3: at: expected a text such as \"D 0-9\"",
              "a.toml:3: name: expected a text such as \"output frequency\"",
              "a.toml:3: scale: expected a number" } },
        ConfigRow { "EveryErrorIsToldInTheOrderOfTheFile",
                    "[[station]]\naddress = 0\n[line]\nport = 5\nspeed = \"fast\"\n",
                    { "a.toml:2: address: expected a whole number from 1 to 247",
                      "a.toml:4: port: expected a text such as \"/dev/serial/by-id/usb-...\"",
                      "a.toml:5: speed: expected a whole number from 300 to 4000000" } }),
    nameOf);

TEST(Config, TextThatIsNoTomlIsAnErrorOfItsLine)
{
    QVector<ConfigError> errors;

    parseConfig("[line]\nport = \n", &errors);

    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.at(0).line, 2);
}

TEST(Config, AnEntryThatTheDriverRefusesIsNamedWithItsLine)
{
    const Texts errors = planErrors("line.port = \"a\"\n[[station]]\naddress = 1\n"
                                    "[[station.register]]\nat = \"D 40\"\n"
                                    "[[station.register]]\nat = \"CW\"\n");

    EXPECT_EQ(
        errors,
        (Texts { "a.toml:4: station 1, \"D 40\": D 40 (0xD028) is out of range; D reaches from 0 "
                 "to 31 (0xD01F)",
                 "a.toml:6: station 1, \"CW\": CW can only be written; F, D, SW and FU can be "
                 "read" }));
}

TEST(Config, AnEntryThatTheDriverRefusesIsToldOnOneLine)
{
    const Texts errors = planErrors("[[station]]\naddress = 1\n"
                                    "[[station.register]]\nat = \"D 40\\n\"\n");

    EXPECT_EQ(errors,
              Texts { "a.toml:3: station 1, \"D 40\": D 40 (0xD028) is out of range; D reaches "
                      "from 0 to 31 (0xD01F)" });
}

TEST(Scaling, AQuantityGoesBackToTheNearestRegisterValue)
{
    Scaling scaling;
    scaling.factor = 0.01;
    scaling.offset = -10.0;

    EXPECT_EQ(scaling.registerValue(-10.0), 0);
    EXPECT_EQ(scaling.registerValue(39.996), 5000);
    EXPECT_EQ(scaling.registerValue(645.35), 65535);
}

TEST(Scaling, AQuantityOutOfReachHasNoRegisterValue)
{
    Scaling scaling;
    Scaling withSign;
    withSign.isSigned = true;

    EXPECT_EQ(scaling.registerValue(-1.0), std::nullopt);
    EXPECT_EQ(scaling.registerValue(0.0), 0);
    EXPECT_EQ(scaling.registerValue(65535.0), 0xFFFF);
    EXPECT_EQ(scaling.registerValue(65536.0), std::nullopt);
    EXPECT_EQ(withSign.registerValue(-32769.0), std::nullopt);
    EXPECT_EQ(withSign.registerValue(-32768.0), 0x8000);
    EXPECT_EQ(withSign.registerValue(-1.0), 0xFFFF);
    EXPECT_EQ(withSign.registerValue(32767.0), 0x7FFF);
    EXPECT_EQ(withSign.registerValue(32768.0), std::nullopt);
    EXPECT_EQ(scaling.registerValue(std::nan("")), std::nullopt);
}

TEST(Scaling, AQuantityIsShownWithItsDecimalsAndUnit)
{
    Scaling scaling;
    EXPECT_EQ(scaling.text(65535).toStdString(), "65535");

    scaling.isSigned = true;
    scaling.factor = 0.5;
    scaling.offset = 10.0;
    scaling.decimals = 2;
    scaling.unit = QStringLiteral("V");
    EXPECT_EQ(scaling.text(0xFFFD).toStdString(), "8.50 V");
}
