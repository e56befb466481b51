// SPDX-License-Identifier: MIT
// The loaded driver with what a host lends it.
#include "driver_link.h"

#include <QMutex>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace bench {
namespace {

std::vector<unsigned char> hostBlock(dx4::hostBlockBytes);
QMutex hostMutex;

} // namespace

long reportedChanges = 0;

LoadedDriver &loadedDriver()
{
    static LoadedDriver driver;
    return driver;
}

void countChange(int /*linkId*/, int /*station*/, QString & /*name*/, int /*address*/)
{
    ++reportedChanges;
}

void startLink(int blockSize)
{
    LoadedDriver &loaded = loadedDriver();
    const QByteArray settings = "1#0#0#3#" + QByteArray::number(blockSize);
    int result = 0;
    loaded.initProperty(hostBlock.data(), 0, nullptr, &result, settings.constData(), &hostMutex);
    loaded.setAddrValueChangeCallBack(countChange);
}

void startPolling(const Poll &poll)
{
    startLink(poll.perBlock);
    unsigned char value[2];
    for (const NamedRegister &named : poll.named())
        loadedDriver().getData(named.station, pollType, named.address, 1, value);
    QList<KEY_ADDRESS> wanted = poll.wanted();
    if (loadedDriver().addrMerge(wanted) != poll.blocks)
        endWith("the driver merged blocks that were meant to stay apart");
}

void endWith(const char *message)
{
    std::fprintf(stderr, "korvane_bench: %s\n", message);
    std::exit(1);
}

} // namespace bench
