// SPDX-License-Identifier: MIT
// The command line of dx4-sim.
#include "simulator/options.h"

#include "common/number_text.h"
#include "simulator/station_list.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <limits>
#include <ostream>
#include <system_error>
#include <utility>

namespace dx4::sim {

namespace {

constexpr const char *examples = R"(Examples:
  dx4-sim --pty                          print the device to open, serve station 1
  dx4-sim --pty --stations 1,2,5 --json  three stations, one JSON line per event
  dx4-sim --pty --stations 1-32          a full segment
  dx4-sim --pty --faults bad.toml --seed 7 --log bytes.log
                                         a bad line, the same one every time
  dx4-sim --pty --link drive --values set.txt
                                         reachable as ./drive, with the registers of a dump
  dx4-sim --port /dev/ttyUSB0 --speed 19200 --format 8E1
                                         serve a real line

Type "help" on its standard input for the commands it takes while it runs.
Exit codes: 0 done, 1 device or line, 2 usage.)";

std::string checkFormat(const std::string &text)
{
    const bool good = text.size() == 3 && text[0] == '8'
        && (text[1] == 'N' || text[1] == 'E' || text[1] == 'O')
        && (text[2] == '1' || text[2] == '2');
    return good ? std::string() : "expected 8N1, 8N2, 8E1, 8E2, 8O1 or 8O2, not " + text;
}

/// Not what an empty variable of a script stands for.
std::string checkGiven(const std::string &text)
{
    return text.empty() ? "nothing given" : std::string();
}

/// Numbers as they were typed: the library's own reading takes "1e3" and wraps -1 round.
struct NumberTexts {
    std::string speed;
    std::string turnaround;
    std::vector<std::string> stations { "1" };
    std::string seed;
};

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

CLI::Validator wholeNumber(int lowest, int highest)
{
    const std::string range = std::to_string(lowest) + '-' + std::to_string(highest);
    const auto check = [lowest, highest](const std::string &text) {
        const std::optional<int> number = common::parseWholeNumber(text);
        if (number && *number >= lowest && *number <= highest)
            return std::string();
        return quoted(text) + (number ? " is out of range; " : " is no whole number; ")
            + std::to_string(lowest) + " to " + std::to_string(highest) + " is allowed";
    };
    return CLI::Validator(check, '[' + range + ']');
}

std::string checkSeed(const std::string &text)
{
    if (common::parseUnsigned(text))
        return {};
    return quoted(text) + " is no seed; it is a whole number from 0 to "
        + std::to_string(std::numeric_limits<std::uint64_t>::max());
}

std::string checkStations(const std::string &text)
{
    return parseStations(text).error;
}

/// What the library has checked by now.
void takeNumbers(Options &options, const NumberTexts &texts)
{
    options.speed = common::parseWholeNumber(texts.speed).value_or(options.speed);
    options.turnaroundMs =
        common::parseWholeNumber(texts.turnaround).value_or(options.turnaroundMs);
    options.seed = common::parseUnsigned(texts.seed);
}

void addDeviceOptions(CLI::App &app, Options &options, NumberTexts &texts)
{
    CLI::Option *pty = app.add_flag(
        "--pty", options.pty, "serve a new pseudo-terminal; its path is the first line printed");
    CLI::Option *port = app.add_option("--port", options.port, "serve this serial device")
                            ->check(CLI::Validator(checkGiven, ""))
                            ->type_name("DEVICE");
    pty->excludes(port);
    app.add_option("--link", options.linkPath, "make a symbolic link to the pseudo-terminal there")
        ->check(CLI::Validator(checkGiven, ""))
        ->type_name("PATH");
    texts.speed = std::to_string(options.speed);
    app.add_option("--speed", texts.speed,
                   "line speed in bit/s; with --pty, 0 leaves the time of characters out")
        ->check(wholeNumber(0, 1000000))
        ->type_name("")
        ->capture_default_str();
    app.add_option("--format", options.format, "data bits, parity, stop bits")
        ->check(CLI::Validator(checkFormat, "8N1|8N2|8E1|8E2|8O1|8O2"))
        ->capture_default_str();
    texts.turnaround = std::to_string(options.turnaroundMs);
    app.add_option("--turnaround", texts.turnaround,
                   "time from the end of a request to the reply, in ms")
        ->check(wholeNumber(0, 10000))
        ->type_name("")
        ->capture_default_str();
}

void addOtherOptions(CLI::App &app, Options &options, NumberTexts &texts)
{
    app.add_option("--stations", texts.stations, "stations to serve, such as 1,3-5; else 1")
        ->allow_extra_args(false) // one word behind each --stations
        ->check(CLI::Validator(checkStations, ""))
        ->type_name("LIST");
    app.add_option("--values", options.valueFile, "what registers hold at the start")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
    app.add_option("--faults", options.faultFile, "what goes wrong on the line, as TOML")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
    app.add_option("--seed", texts.seed, "seed of the faults; goes before the file's own")
        ->check(CLI::Validator(checkSeed, ""))
        ->type_name("NUMBER");
    app.add_option("--log", options.logFile, "write every frame as hex")
        ->check(CLI::Validator(checkGiven, ""))
        ->type_name("FILE");
    app.add_option("--pcap", options.captureFile, "write every frame as a network capture")
        ->check(CLI::Validator(checkGiven, ""))
        ->type_name("FILE");
    app.add_flag("--json", options.json, "print one JSON object per line");
}

/// An option that ends with "=": the parser would take the next word for its value.
std::string findEmptyValue(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.size() > 3 && word.compare(0, 2, "--") == 0 && word.back() == '=')
            return word.substr(0, word.size() - 1) + ": nothing given behind \"=\"";
    }
    return {};
}

/// Takes all words of --stations for one list. @return what is wrong with it
std::string takeStations(Options &options, const NumberTexts &texts)
{
    std::string all;
    for (const std::string &text : texts.stations)
        all += (all.empty() ? "" : ",") + text;
    const StationList list = parseStations(all);
    options.stations = list.stations;
    return list.good() ? std::string() : "--stations: " + list.error;
}

std::string findContradiction(const Options &options)
{
    if (!options.pty && options.port.empty())
        return "say what to serve: --pty or --port DEVICE";
    if (!options.linkPath.empty() && !options.pty)
        return "--link is for --pty only: a serial port has its path";
    if (!options.port.empty() && options.speed == 0)
        return "--speed 0 is for --pty only: a serial port needs its speed";
    return {};
}

/// Whether two options name one file.
bool isSameFile(const std::string &first, const std::string &second)
{
    std::error_code failed;
    const bool isDevice = std::filesystem::is_character_file(first, failed); // as /dev/null
    return !first.empty() && !isDevice
        && (first == second || std::filesystem::equivalent(first, second, failed));
}

/// What is written is emptied first: it must be no file that is read or written otherwise.
std::string findSharedFile(const Options &options)
{
    const std::string nameAnother = "; name another file";
    if (isSameFile(options.logFile, options.captureFile))
        return "--log and --pcap are one file" + nameAnother;
    for (const auto &[option, written] :
         { std::pair("--log", options.logFile), std::pair("--pcap", options.captureFile) }) {
        if (isSameFile(written, options.faultFile))
            return option + std::string(" is the file of --faults") + nameAnother;
        if (isSameFile(written, options.valueFile))
            return option + std::string(" is the file of --values") + nameAnother;
    }
    return {};
}

int refuse(std::ostream &errors, const std::string &why)
{
    errors << why << "\nRun with --help for more information.";
    return UsageError;
}

} // namespace

std::optional<int> readOptions(int argc, char **argv, Options &options, std::ostream &out,
                               std::ostream &errors)
{
    CLI::App app("Simulates frequency inverters on a Modbus RTU line.", "dx4-sim");
    app.set_version_flag("--version", "dx4-sim " KORVANE_VERSION);
    app.footer(examples);
    NumberTexts texts;
    addDeviceOptions(app, options, texts);
    addOtherOptions(app, options, texts);
    const std::string emptyValue = findEmptyValue(argc, argv);
    if (!emptyValue.empty())
        return refuse(errors, emptyValue);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &wanted) { // --help and --version
        app.exit(wanted, out, errors);
        return Done;
    } catch (const CLI::ParseError &error) {
        return refuse(errors, error.what());
    }
    takeNumbers(options, texts);
    std::string wrong = takeStations(options, texts);
    if (wrong.empty())
        wrong = findContradiction(options);
    if (wrong.empty())
        wrong = findSharedFile(options);
    return wrong.empty() ? std::nullopt : std::optional(refuse(errors, wrong));
}

} // namespace dx4::sim
