// SPDX-License-Identifier: MIT
// What the registers hold when the stations come up, from a text.
#include "simulator/start_values.h"

#include "common/number_text.h"
#include "simulator/text_file.h"
#include "wire/limits.h"

#include <algorithm>
#include <sstream>

namespace dx4::sim {

namespace {

using Words = std::vector<std::string>;

constexpr std::uint16_t firstParameter = 0xF000;
const char *const form = "expected a line such as \"F 8.2 = 5\", \"D 4 = 101\" or \"station 1\"";

/// A line without its comment, "=" as a word of its own.
Words wordsOf(const std::string &line)
{
    std::string spaced;
    for (const char character : line.substr(0, line.find('#')))
        spaced += character == '=' ? std::string(" = ") : std::string(1, character);
    std::istringstream stream(spaced);
    Words words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/// The register that one or two words name: "F 8.2", "D 4", "SW 0", "SW", "0xD004".
std::optional<std::uint16_t> registerIn(const Words &words)
{
    if (words.size() == 1)
        return registerByName(words.front());
    const bool isAlone = words.front() != "F" && words.front() != "D";
    if (isAlone && words.back() == "0")
        return registerByName(words.front());
    return isAlone ? std::nullopt : registerByName(words.front() + words.back());
}

/// Takes the lines of a text, one by one.
class Parser {
public:
    /// @return what is wrong with the line; empty when nothing
    std::string take(const std::string &line)
    {
        ++m_line;
        const Words words = wordsOf(line);
        if (words.empty())
            return {};
        if (words.front() == "station")
            return takeStation(words);
        if (m_isComplete)
            return "only \"station\" may follow \"complete\"";
        if (words == Words { "complete" })
            return takeComplete();
        return takeRegister(words);
    }

    const std::vector<StartValue> &values() const { return m_values; }

private:
    std::string takeStation(const Words &words)
    {
        const auto number =
            words.size() == 2 ? common::parseWholeNumber(words.back()) : std::optional<int>();
        if (!number || *number < 1 || *number > lastStation)
            return "a station is a number from 1 to 247";
        m_station = number;
        m_isComplete = false;
        return {};
    }

    /// A file that was cut off lacks its end; one that was cut in the middle lacks registers.
    std::string takeComplete()
    {
        const auto isOurs = [this](const StartValue &value) {
            return value.station == m_station && value.address >= firstParameter;
        };
        const auto there = std::count_if(m_values.begin(), m_values.end(), isOurs);
        int all = 0;
        for (const Band &band : bands())
            all += band.first >= firstParameter ? band.count : 0;
        m_isComplete = true;
        return there == all ? std::string()
                            : "the set is said to be complete, but " + std::to_string(all - there)
                + " of " + std::to_string(all) + " registers are missing";
    }

    std::string takeRegister(const Words &words)
    {
        const bool isRefused = words.back() == "refused";
        const std::size_t behind = isRefused ? 1 : 2; // words behind the register
        if (words.size() <= behind || words.size() > behind + 2
            || (!isRefused && words[words.size() - 2] != "="))
            return form;
        const Words name(words.begin(), words.end() - static_cast<std::ptrdiff_t>(behind));
        const std::optional<std::uint16_t> address = registerIn(name);
        if (!address)
            return "no such register; " + std::string(form);
        const auto isSame = [this, address](const StartValue &value) {
            return value.station == m_station && value.address == *address;
        };
        if (std::any_of(m_values.begin(), m_values.end(), isSame))
            return registerName(*address) + " stands here twice";
        const std::optional<std::uint16_t> value = common::parseRegisterValue(words.back());
        if (!isRefused && !value)
            return "a value is 0 to 65535, or 0x0000 to 0xFFFF";
        m_values.push_back({ m_line, m_station, *address, value });
        return {};
    }

    int m_line = 0;
    std::optional<int> m_station;
    bool m_isComplete = false;
    std::vector<StartValue> m_values;
};

std::string placed(const std::string &source, int line, const std::string &what)
{
    return source + ':' + std::to_string(line) + ": " + what;
}

/// @return what is wrong; empty when the value was set
std::string setValue(Inverter &inverter, const StartValue &value)
{
    const Band &band = *bandOf(value.address);
    if (!value.value) {
        inverter.remove(value.address);
    } else if (!band.writable) {
        inverter.hold(value.address, *value.value);
    } else if (inverter.accepts(value.address, *value.value)) {
        inverter.write(value.address, *value.value);
    } else {
        const Limits limits = Inverter::limitsOf(value.address);
        return std::to_string(*value.value) + " is outside the limits of "
            + registerName(value.address) + ", " + std::to_string(limits.lowest) + " to "
            + std::to_string(limits.highest);
    }
    return {};
}

} // namespace

StartValues parseStartValues(const std::string &text, const std::string &source)
{
    StartValues result;
    result.source = source;
    Parser parser;
    std::istringstream stream(text);
    int number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const std::string wrong = parser.take(line);
        if (!wrong.empty()) {
            result.error = placed(source, number, wrong);
            return result;
        }
    }
    result.values = parser.values();
    return result;
}

StartValues readStartValues(const std::string &path)
{
    StartValues failed;
    const std::optional<std::string> text = readTextFile(path, &failed.error);
    return text ? parseStartValues(*text, path) : failed;
}

std::string setStartValues(const StartValues &values, Bus &bus)
{
    for (const StartValue &value : values.values) {
        const std::vector<int> stations =
            value.station ? std::vector<int> { *value.station } : bus.stations();
        for (const int station : stations) {
            Inverter *const inverter = bus.find(station);
            const std::string wrong = inverter
                ? setValue(*inverter, value)
                : "station " + std::to_string(station) + " is not served; see --stations";
            if (!wrong.empty())
                return placed(values.source, value.line, wrong);
        }
    }
    return {};
}

} // namespace dx4::sim
