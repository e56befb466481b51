// SPDX-License-Identifier: MIT
// A symbol `driver` that belongs to the host. It stands in a file of its own because the driver's
// headers declare the same name as something else.
#include "host_symbol.h"

#include <algorithm>

extern unsigned char driver[hostSymbolBytes];
__attribute__((visibility("default"))) unsigned char driver[hostSymbolBytes];

const unsigned char *hostSymbol()
{
    return driver;
}

void markHostSymbol()
{
    std::fill_n(driver, hostSymbolBytes, static_cast<unsigned char>(0x5A));
}

std::size_t markedBytes()
{
    return static_cast<std::size_t>(std::count(driver, driver + hostSymbolBytes, 0x5A));
}
