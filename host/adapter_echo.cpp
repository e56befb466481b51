// SPDX-License-Identifier: MIT
// What is known of an adapter that may give every request back to its sender.
#include "host/adapter_echo.h"

namespace dx4::host {

AdapterEcho::State AdapterEcho::state() const
{
    if (m_mode != EchoMode::Auto)
        return m_mode == EchoMode::Yes ? State::Present : State::Absent;
    if (m_echoes >= exchangesToBelieve)
        return State::Present;
    // A line that brought an echo once may bring it again: one reply without it is no proof.
    return m_clean >= (m_hasEchoed ? exchangesToBelieve : 1) ? State::Absent : State::Unknown;
}

void AdapterEcho::noteEcho()
{
    m_hasEchoed = true;
    ++m_echoes;
    m_clean = 0;
}

void AdapterEcho::noteNoEcho()
{
    ++m_clean;
    m_echoes = 0;
}

} // namespace dx4::host
