// SPDX-License-Identifier: MIT
// Where a line is run.
#include "host/service/place.h"

#include <QEventLoop>

#include <utility>

namespace dx4::host {

void OwnThread::start(std::function<void()> run)
{
    m_thread = std::thread([run = std::move(run)] {
        const QEventLoop
            dispatcher; // a serial port wants one on its thread, though nobody turns it
        run();
    });
}

} // namespace dx4::host
