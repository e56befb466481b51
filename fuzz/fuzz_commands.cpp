// SPDX-License-Identifier: MIT
// Any lines as commands of the simulator: each is answered, in JSON that is JSON.
#include "expect.h"
#include "fuzz_target.h"
#include "simulator/commands.h"

#include <QByteArray>
#include <QJsonDocument>

#include <sstream>

using namespace dx4::sim;

namespace {

constexpr int mostLines = 20;

void expectJson(const std::string &output)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        expect(QJsonDocument::fromJson(QByteArray::fromStdString(line)).isObject(),
               "each line of the output is a JSON object");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    VirtualClock clock;
    Bus bus;
    bus.add(1);
    bus.add(2);
    Cable cable(bus, clock);
    std::ostringstream out;
    Reporter reporter(out, true);
    Commands commands(bus, cable, clock, reporter);
    std::istringstream lines({ reinterpret_cast<const char *>(data), size });
    int number = 0;
    for (std::string line; number < mostLines && std::getline(lines, line); ++number) {
        if (!commands.run(line))
            break;
        exchange(cable, clock, withCrc(fromHex("01 03 D0 00 00 02")), Micros(50000));
    }
    expectJson(out.str());
    return 0;
}
