// SPDX-License-Identifier: MIT
// Fault rules from a TOML text.
#include "simulator/fault_file.h"

#include "common/number_text.h"
#include "simulator/register_map.h"
#include "simulator/text_file.h"
#include "wire/limits.h"

#include <toml++/toml.h>

#include <array>
#include <limits>

namespace dx4::sim {

namespace {

constexpr std::int64_t longestMs = 86400000; // one day
constexpr std::int64_t longestFrame = 256;
constexpr std::int64_t manyFrames = 1000000000;

/// A place in the text and what is wrong there.
struct Wrong {
    toml::source_position place;
    std::string what;
};

[[noreturn]] void wrong(const toml::node &node, const std::string &key, const std::string &what)
{
    throw Wrong { node.source().begin, key + ": " + what };
}

std::int64_t integerOf(const toml::node &node, const std::string &key, std::int64_t lowest,
                       std::int64_t highest)
{
    const toml::value<std::int64_t> *value = node.as_integer();
    if (!value || value->get() < lowest || value->get() > highest)
        wrong(node, key,
              "expected a whole number from " + std::to_string(lowest) + " to "
                  + std::to_string(highest));
    return value->get();
}

int smallIntegerOf(const toml::node &node, const std::string &key, int lowest, int highest)
{
    return static_cast<int>(integerOf(node, key, lowest, highest));
}

std::string textOf(const toml::node &node, const std::string &key, const std::string &expected)
{
    const toml::value<std::string> *value = node.as_string();
    if (!value)
        wrong(node, key, "expected " + expected);
    return value->get();
}

double probabilityOf(const toml::node &node, const std::string &key)
{
    const std::optional<double> value = node.value<double>();
    if (!value || !(*value >= 0.0 && *value <= 1.0))
        wrong(node, key, "expected a number from 0 to 1");
    return *value;
}

Micros timeOf(const toml::node &node, const std::string &key)
{
    return std::chrono::milliseconds(integerOf(node, key, 0, longestMs));
}

FaultKind kindOf(const toml::node &node, const std::string &key)
{
    std::string expected;
    for (FaultKind kind : allFaultKinds())
        expected += (expected.empty() ? "" : ", ") + std::string(faultKindName(kind));
    const std::optional<FaultKind> kind = faultKindByName(textOf(node, key, "one of " + expected));
    if (!kind)
        wrong(node, key, "no such fault; expected one of " + expected);
    return *kind;
}

/// A register's name, or any number of the register space: a rule may wait for requests that the
/// inverter refuses.
std::optional<std::uint16_t> registerEnd(const std::string &text)
{
    if (const std::optional<std::uint16_t> named = registerByName(text))
        return named;
    return common::parseRegisterValue(text);
}

RegisterRange registersOf(const toml::node &node, const std::string &key)
{
    const std::string expected = "a register or a range such as \"D0-D5\" or \"0xF000-0xF0FF\"";
    const std::string text = textOf(node, key, expected);
    const std::size_t dash = text.find('-');
    const std::optional<std::uint16_t> first = registerEnd(text.substr(0, dash));
    const std::optional<std::uint16_t> last =
        dash == std::string::npos ? first : registerEnd(text.substr(dash + 1));
    if (!first || !last || *last < *first)
        wrong(node, key, "expected " + expected);
    return { *first, *last };
}

Side sideOf(const toml::node &node, const std::string &key)
{
    const std::string expected = "\"request\" or \"reply\"";
    const std::string text = textOf(node, key, expected);
    if (text != "request" && text != "reply")
        wrong(node, key, "expected " + expected);
    return text == "request" ? Side::Request : Side::Reply;
}

JunkPlace placeOf(const toml::node &node, const std::string &key)
{
    const std::string expected = "\"before\", \"inside\" or \"after\"";
    const std::string text = textOf(node, key, expected);
    if (text == "before")
        return JunkPlace::Before;
    if (text == "inside")
        return JunkPlace::Inside;
    if (text == "after")
        return JunkPlace::After;
    wrong(node, key, "expected " + expected);
}

/// Takes a key that says when; false for any other key.
bool readCondition(FaultRule &rule, const std::string &key, const toml::node &node)
{
    if (key == "frame")
        rule.frame = smallIntegerOf(node, key, 1, manyFrames);
    else if (key == "every")
        rule.every = smallIntegerOf(node, key, 1, manyFrames);
    else if (key == "probability")
        rule.probability = probabilityOf(node, key);
    else if (key == "registers")
        rule.registers = registersOf(node, key);
    else if (key == "station")
        rule.station = smallIntegerOf(node, key, 0, lastStation);
    else if (key == "from_ms")
        rule.from = timeOf(node, key);
    else if (key == "until_ms")
        rule.until = timeOf(node, key);
    else if (key == "times")
        rule.times = smallIntegerOf(node, key, 1, manyFrames);
    else
        return false;
    return true;
}

/// Takes a key that says what; false for a key that rules of this kind do not have.
bool readEffect(FaultRule &rule, const std::string &key, const toml::node &node)
{
    if (key == "side" && hasKey(rule.kind, SideKey))
        rule.side = sideOf(node, key);
    else if (key == "place" && hasKey(rule.kind, PlaceKey))
        rule.place = placeOf(node, key);
    else if (key == "count" && hasKey(rule.kind, CountKey))
        rule.count = static_cast<int>(integerOf(node, key, 1, longestFrame));
    else if (key == "value" && hasKey(rule.kind, ValueKey))
        rule.value = smallIntegerOf(node, key, rule.kind == FaultKind::Exception ? 1 : 0, 255);
    else if (key == "duration_ms" && hasKey(rule.kind, DurationKey))
        rule.duration = timeOf(node, key);
    else
        return false;
    return true;
}

FaultRule ruleOf(const toml::table &table)
{
    const toml::node *kind = table.get("kind");
    if (!kind)
        wrong(table, "fault", "expected a key \"kind\"");
    FaultRule rule;
    rule.kind = kindOf(*kind, "kind");
    for (const auto &[name, node] : table) {
        const std::string key(name.str());
        if (key == "kind" || readCondition(rule, key, node) || readEffect(rule, key, node))
            continue;
        throw Wrong { name.source().begin,
                      key + ": no such key for " + std::string(faultKindName(rule.kind)) };
    }
    if (rule.kind == FaultKind::Delay && rule.duration.count() == 0)
        wrong(*kind, "kind", "a delay needs duration_ms");
    return rule;
}

FaultFile fileOf(const toml::table &root)
{
    FaultFile file;
    for (const auto &[name, node] : root) {
        const std::string key(name.str());
        if (key == "seed") {
            file.seed = static_cast<std::uint64_t>(
                integerOf(node, key, 0, std::numeric_limits<std::int64_t>::max()));
        } else if (key == "fault") {
            const toml::array *faults = node.as_array();
            if (!faults)
                wrong(node, key, "expected [[fault]]");
            for (const toml::node &fault : *faults) {
                if (!fault.is_table())
                    wrong(fault, key, "expected [[fault]]");
                file.rules.push_back(ruleOf(*fault.as_table()));
            }
        } else {
            throw Wrong { name.source().begin, key + ": expected seed or [[fault]]" };
        }
    }
    return file;
}

FaultFile failed(const std::string &source, std::uint32_t line, const std::string &what)
{
    FaultFile file;
    file.error = source + ':' + std::to_string(line) + ": " + what;
    return file;
}

} // namespace

FaultFile parseFaults(const std::string &text, const std::string &source)
{
    try {
        return fileOf(toml::parse(text, source));
    } catch (const toml::parse_error &error) {
        return failed(source, error.source().begin.line, std::string(error.description()));
    } catch (const Wrong &error) {
        return failed(source, error.place.line, error.what);
    }
}

FaultFile readFaultFile(const std::string &path)
{
    FaultFile failed;
    const std::optional<std::string> text = readTextFile(path, &failed.error);
    return text ? parseFaults(*text, path) : failed;
}

} // namespace dx4::sim
