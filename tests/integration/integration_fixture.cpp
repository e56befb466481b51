// SPDX-License-Identifier: MIT
// A host with the built plug-in on one end of a pseudo-terminal and a libmodbus slave on the other.
#include "integration_fixture.h"

#include <stdexcept>

using namespace dx4::host;

namespace {

std::unique_ptr<Plugin> loadPlugin()
{
    QString error;
    auto plugin =
        Plugin::load(QStringLiteral(KORVANE_PLUGIN_FILE), Plugin::Instance::PrivateCopy, &error);
    if (!plugin)
        throw std::runtime_error(error.toStdString());
    return plugin;
}

LinkSettings linkSettings(int linkNumber)
{
    LinkSettings settings;
    settings.linkNumber = linkNumber;
    settings.retryLimit = 3;
    return settings;
}

LineSettings lineSettings(const ModbusPeer &peer)
{
    LineSettings settings;
    settings.port = QString::fromStdString(peer.device());
    settings.speed = 115200;
    settings.responseTimeout = std::chrono::milliseconds(300);
    return settings;
}

const char *stepName(Cycle::Step step)
{
    switch (step) {
    case Cycle::Step::Idle:
        return "idle";
    case Cycle::Step::Served:
        return "served";
    case Cycle::Step::Retry:
        return "retry";
    case Cycle::Step::GivenUp:
        return "given up";
    case Cycle::Step::LineDown:
        return "line down";
    }
    return "";
}

} // namespace

HostUnderTest::HostUnderTest(const ModbusPeer &peer, int linkNumber)
    : link(loadPlugin(), linkSettings(linkNumber))
    , line(lineSettings(peer))
    , exchange(line)
    , cycle(link, exchange)
{
    link.onChange([this](const ValueChange &change) {
        changes.push_back(std::to_string(change.linkNumber) + ' ' + std::to_string(change.station)
                          + ' ' + change.name.toStdString() + ' ' + std::to_string(change.address));
    });
    QString error;
    if (!line.open(&error))
        throw std::runtime_error(error.toStdString());
}

std::vector<std::string> HostUnderTest::steps(int count)
{
    std::vector<std::string> results;
    for (int i = 0; i < count; ++i)
        results.emplace_back(stepName(cycle.step()));
    return results;
}

int HostUnderTest::value(const char *type, int address)
{
    return link.registerState(1, QString::fromLatin1(type), address).value;
}

KEY_ADDRESS polled(const char *type, int address, int count)
{
    return wanted(1, QString::fromLatin1(type), address, count);
}
