// SPDX-License-Identifier: MIT
// The tested service is the one on the event loop of the test.
#include "host/service/event_loop_service.h"

#include "service_fixture.h"

#include <QCoreApplication>

#include <utility>

using namespace dx4::host;

std::unique_ptr<LineService> makeService(LineFactory factory, const ServiceSettings &settings)
{
    return std::make_unique<EventLoopService>(std::move(factory), settings);
}

void letTheLineGoOn(Plant &plant)
{
    plant.turn = [] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); };
}
