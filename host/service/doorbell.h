// SPDX-License-Identifier: MIT
// A pause that another thread can end.
#pragma once

#include "host/base/own_descriptor.h"
#include "host/line/waits.h"

namespace dx4::host {

/// Lets one thread wait and any other wake it. A ring that comes while nobody waits is kept for the
/// next wait; several count as one.
class Doorbell {
public:
    /// Throws std::system_error where the process may open no more descriptors.
    ///
    /// @param waits  of the thread that waits; outlives this
    explicit Doorbell(Waits &waits = blockingWaits());

    void ring();

    /// @return whether it rang before the time was over
    bool wait(Duration span);

private:
    Waits &m_waits;
    const OwnDescriptor m_descriptor;
};

} // namespace dx4::host
