// SPDX-License-Identifier: MIT
// One way of using the driver, so many times, for a tool that counts instructions.
//
// Usage: korvane_cost WAY REGISTERS TIMES
#include "loaded_driver.h"

#include <QMutex>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int station = 1;
constexpr int blockSize = 16;

std::vector<unsigned char> hostBlock(dx4::hostBlockBytes);
QMutex hostMutex;
const QString type = QStringLiteral("D");

void ignoreChange(int /*linkId*/, int /*station*/, QString & /*name*/, int /*address*/) { }

void startLink(LoadedDriver &loaded)
{
    int result = 0;
    loaded.initProperty(hostBlock.data(), 0, nullptr, &result, "1#0#0#3#16", &hostMutex);
    loaded.setAddrValueChangeCallBack(ignoreChange);
}

// As screens name them that were made over years: in no order, every other register.
std::vector<int> shuffledAddresses(int count)
{
    std::vector<int> addresses;
    for (int i = 0; i < count; ++i)
        addresses.push_back(2 * i);
    std::shuffle(addresses.begin(), addresses.end(), std::mt19937(1));
    return addresses;
}

QList<KEY_ADDRESS> wantedOf(const std::vector<int> &addresses)
{
    QList<KEY_ADDRESS> wanted;
    for (const int address : addresses) {
        KEY_ADDRESS key;
        key.station = station;
        key.regType = type;
        key.address = address;
        key.count = 1;
        wanted.append(key);
    }
    return wanted;
}

void name(LoadedDriver &loaded, const std::vector<int> &addresses)
{
    unsigned char value[2];
    for (const int address : addresses)
        loaded.getData(station, type, address, 1, value);
}

// A write from the queue to its echo.
void serve(LoadedDriver &loaded)
{
    FRAME_PRO frame;
    if (loaded.getSendFrame(frame) == dx4::NothingToSend)
        loaded.getSendFrame(frame);
    QByteArray echo(reinterpret_cast<const char *>(frame.frame), 8);
    QString errorText;
    loaded.dealRcvFrame(echo, errorText);
}

// Has the block of the first address polled.
void pollFirst(LoadedDriver &loaded, const std::vector<int> &addresses)
{
    QList<KEY_ADDRESS> wanted = wantedOf({ addresses.front() });
    wanted.first().count = blockSize;
    loaded.addrMerge(wanted);
}

// A read from its frame to the values in the cache.
void read(LoadedDriver &loaded)
{
    FRAME_PRO frame;
    loaded.getSendFrame(frame);
    QByteArray reply("\x01\x03\x20", 3);
    reply.append(2 * blockSize, '\0');
    reply.append("\x92\x7A", 2);
    QString errorText;
    if (loaded.dealRcvFrame(reply, errorText) != dx4::ReplyAccepted) {
        std::fprintf(stderr, "korvane_cost: the driver refused a right reply\n");
        std::exit(1);
    }
}

using Way = std::function<void(LoadedDriver &, const std::vector<int> &)>;

const std::map<std::string, Way> &ways()
{
    static const std::map<std::string, Way> all {
        // All registers are named for the first time.
        { "name",
          [](LoadedDriver &loaded, const std::vector<int> &addresses) {
              startLink(loaded);
              name(loaded, addresses);
          } },
        { "merge",
          [](LoadedDriver &loaded, const std::vector<int> &addresses) {
              startLink(loaded);
              QList<KEY_ADDRESS> wanted = wantedOf(addresses);
              loaded.addrMerge(wanted);
          } },
        { "merge_again",
          [](LoadedDriver &loaded, const std::vector<int> &addresses) {
              QList<KEY_ADDRESS> wanted = wantedOf(addresses);
              loaded.addrMerge(wanted);
          } },
        // One request each beside a cache of all registers.
        { "get",
          [](LoadedDriver &loaded, const std::vector<int> &addresses) {
              unsigned char values[2 * blockSize];
              loaded.getData(station, type, addresses.front(), blockSize, values);
          } },
        { "read",
          [](LoadedDriver &loaded, const std::vector<int> &addresses) {
              if (loaded.state->readList.isEmpty())
                  pollFirst(loaded, addresses);
              read(loaded);
          } },
        { "write",
          [](LoadedDriver &loaded, const std::vector<int> &addresses) {
              unsigned char value[2] = { 1, 0 };
              loaded.setData(station, type, addresses.front(), 1, value, 0);
              serve(loaded);
          } },
    };
    return all;
}

} // namespace

int main(int argc, char **argv)
{
    const auto way = argc == 4 ? ways().find(argv[1]) : ways().end();
    if (way == ways().end()) {
        std::fprintf(stderr,
                     "usage: korvane_cost name|merge|merge_again|get|read|write REGISTERS TIMES\n");
        return 2;
    }
    const std::vector<int> addresses = shuffledAddresses(std::atoi(argv[2]));
    LoadedDriver loaded;
    startLink(loaded);
    name(loaded, addresses);
    for (int i = 0; i < std::atoi(argv[3]); ++i)
        way->second(loaded, addresses);
    return 0;
}
