// SPDX-License-Identifier: MIT
// One line on the event loop of its owner's thread, for small programs.
#include "host/service/event_loop_service.h"

#include "host/service/loop_place.h"

#include <utility>

namespace dx4::host {

EventLoopService::EventLoopService(LineFactory factory, const ServiceSettings &settings,
                                   QObject *parent)
    : LineService(std::move(factory), settings, std::make_unique<LoopPlace>(stackSize), parent)
    , m_place(static_cast<const LoopPlace &>(place()))
{
}

std::size_t EventLoopService::deepestStack() const
{
    return m_place.deepestStack();
}

} // namespace dx4::host
