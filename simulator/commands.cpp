// SPDX-License-Identifier: MIT
// What a user or a test types while the simulator serves.
#include "simulator/commands.h"

#include "common/number_text.h"
#include "simulator/fault_file.h"

#include <sstream>

namespace dx4::sim {

namespace {

/// Arguments of a command that takes the rest of its line.
constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

/// A command that cannot be run; the text is the answer.
struct Refused {
    std::string reason;
};

double numberIn(const std::string &word, int lowest, int highest)
{
    const bool isNegative = word.front() == '-';
    const auto size = common::parseDecimal(isNegative ? word.substr(1) : word);
    const double value = size ? (isNegative ? -*size : *size) : 0.0;
    if (!size || value < lowest || value > highest) {
        throw Refused { word + ": expected a number from " + std::to_string(lowest) + " to "
                        + std::to_string(highest) };
    }
    return value;
}

std::uint16_t valueIn(const std::string &word)
{
    const std::optional<std::uint16_t> value = common::parseRegisterValue(word);
    if (!value)
        throw Refused { word + ": expected a value from 0 to 65535, or 0x0000 to 0xFFFF" };
    return *value;
}

std::uint16_t registerIn(const std::string &word)
{
    const std::optional<std::uint16_t> address = registerByName(word);
    if (!address)
        throw Refused { word + ": no such register; try F0.3, Fc.13, D0, CW, FRE, SW, FU, 0xF003" };
    return *address;
}

} // namespace

struct Commands::Row {
    const char *name;
    std::size_t arguments;
    const char *usage;
    void (Commands::*function)(const Words &);
};

const std::vector<Commands::Row> &Commands::table()
{
    static const std::vector<Row> rows = {
        { "status", 0, "status: what every drive does", &Commands::status },
        { "get", 1, "get REGISTER: its value", &Commands::get },
        { "set", 2, "set REGISTER VALUE: as a write request would", &Commands::set },
        { "hold", 2, "hold REGISTER VALUE: show this value, whatever happens", &Commands::hold },
        { "release", 1, "release REGISTER: end of hold", &Commands::release },
        { "trip", 1,
          "trip FAULT: overcurrent, overvoltage, undervoltage, overheat or "
          "communication-loss",
          &Commands::trip },
        { "mains", 1, "mains VOLTS: voltage of the supply", &Commands::mains },
        { "ambient", 1, "ambient CELSIUS: temperature around the drive", &Commands::ambient },
        { "power-cycle", 1, "power-cycle MS: no power for so long", &Commands::powerCycle },
        { "unplug", 0, "unplug: nothing passes any more", &Commands::unplug },
        { "plug", 0, "plug: end of unplug", &Commands::plug },
        { "fault", anyNumber, "fault KEY = VALUE, ...: add a rule, with the keys of a fault file",
          &Commands::fault },
        { "faults-off", 0, "faults-off: take all rules away", &Commands::faultsOff },
        { "help", 0, "help: this list", &Commands::help },
    };
    return rows;
}

Commands::Commands(Bus &bus, Cable &cable, const Clock &clock, Reporter &reporter)
    : m_bus(bus)
    , m_cable(cable)
    , m_clock(clock)
    , m_reporter(reporter)
{
}

bool Commands::run(const std::string &line)
{
    std::istringstream stream(line);
    Words words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    if (words.empty())
        return true;
    if (words.front() == "quit")
        return false;
    if (!chooseStation(words))
        return true;
    m_bus.advanceTo(m_clock.now());
    try {
        obey(words);
    } catch (const Refused &refused) {
        m_reporter.answer(false, refused.reason);
    }
    return true;
}

void Commands::obey(const Words &words)
{
    for (const Row &row : table()) {
        if (words.front() != row.name)
            continue;
        const std::size_t given = words.size() - 1;
        const bool fits = row.arguments == anyNumber ? given > 0 : given == row.arguments;
        if (!fits)
            throw Refused { std::string("usage: ") + row.usage };
        return (this->*row.function)(words);
    }
    throw Refused { words.front() + ": no such command; help lists them" };
}

/// Takes a leading "@2" off and finds that station; without it, the first one.
bool Commands::chooseStation(Words &words)
{
    const std::vector<int> stations = m_bus.stations();
    const bool named = words.front().front() == '@';
    const std::optional<int> station = named ? common::parseWholeNumber(words.front().substr(1))
        : stations.empty()                   ? std::nullopt
                                             : std::optional(stations.front());
    m_inverter = station ? m_bus.find(*station) : nullptr;
    if (named)
        words.erase(words.begin());
    if (m_inverter && !words.empty())
        return true;
    m_reporter.answer(false,
                      m_inverter ? "expected a command behind the station"
                                 : "no such station; try @1 status");
    return false;
}

/// The register that a word names, where the station has it.
std::uint16_t Commands::registerOf(const std::string &word) const
{
    const std::uint16_t address = registerIn(word);
    if (!m_inverter->has(address))
        throw Refused { word + ": this station does not have it" };
    return address;
}

void Commands::status(const Words &)
{
    for (int station : m_bus.stations())
        m_reporter.status(station, *m_bus.find(station));
}

void Commands::get(const Words &words)
{
    const std::uint16_t address = registerOf(words[1]);
    if (!bandOf(address)->readable)
        throw Refused { words[1] + ": write only" };
    m_reporter.answer(true,
                      registerName(address) + ' ' + std::to_string(m_inverter->read(address)));
}

void Commands::set(const Words &words)
{
    const std::uint16_t address = registerOf(words[1]);
    const std::uint16_t value = valueIn(words[2]);
    if (!bandOf(address)->writable)
        throw Refused { words[1] + ": read only; hold shows a value of your own" };
    if (!m_inverter->accepts(address, value))
        throw Refused { words[2] + ": outside the limits of " + words[1] };
    m_inverter->write(address, value);
    m_reporter.answer(true, {});
}

void Commands::hold(const Words &words)
{
    const std::uint16_t address = registerOf(words[1]);
    if (!bandOf(address)->readable)
        throw Refused { words[1] + ": write only" };
    m_inverter->hold(address, valueIn(words[2]));
    m_reporter.answer(true, {});
}

void Commands::release(const Words &words)
{
    m_inverter->release(registerOf(words[1]));
    m_reporter.answer(true, {});
}

void Commands::trip(const Words &words)
{
    const std::optional<Fault> fault = faultByName(words[1]);
    if (!fault)
        throw Refused { words[1]
                        + ": no such fault; expected overcurrent, overvoltage, "
                          "undervoltage, overheat or communication-loss" };
    m_inverter->drive().trip(*fault);
    m_reporter.answer(true, {});
}

void Commands::mains(const Words &words)
{
    m_inverter->drive().setMainsVolts(numberIn(words[1], 0, 1000));
    m_reporter.answer(true, {});
}

void Commands::ambient(const Words &words)
{
    m_inverter->drive().setAmbient(numberIn(words[1], -40, 200));
    m_reporter.answer(true, {});
}

void Commands::powerCycle(const Words &words)
{
    const double milliseconds = numberIn(words[1], 0, 3600000);
    m_inverter->powerCycle(m_clock.now(), Micros(static_cast<Micros::rep>(milliseconds * 1000)));
    m_reporter.answer(true, {});
}

void Commands::unplug(const Words &)
{
    m_cable.unplug();
    m_reporter.answer(true, {});
}

void Commands::plug(const Words &)
{
    m_cable.plug();
    m_reporter.answer(true, {});
}

void Commands::fault(const Words &words)
{
    std::string rule;
    for (std::size_t i = 1; i < words.size(); ++i)
        rule += words[i] + ' ';
    const FaultFile file = parseFaults("fault = [{ " + rule + "}]", "rule");
    if (!file.good())
        throw Refused { file.error };
    for (const FaultRule &each : file.rules)
        m_cable.plan().add(each);
    m_reporter.answer(true, {});
}

void Commands::faultsOff(const Words &)
{
    m_cable.plan().clear();
    m_reporter.answer(true, {});
}

void Commands::help(const Words &)
{
    for (const Row &row : table())
        m_reporter.answer(true, row.usage);
    m_reporter.answer(true, "quit: end");
    m_reporter.answer(true, "@STATION before a command chooses the station, else it is the first");
}

} // namespace dx4::sim
