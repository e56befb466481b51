// SPDX-License-Identifier: MIT
// The tested service is the one on a thread of its own.
#include "service_fixture.h"

#include <utility>

using namespace dx4::host;

std::unique_ptr<LineService> makeService(LineFactory factory, const ServiceSettings &settings)
{
    return std::make_unique<LineService>(std::move(factory), settings);
}

void letTheLineGoOn(Plant &) { }
