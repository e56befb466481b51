// SPDX-License-Identifier: MIT
// What is known of an adapter that may give every request back to its sender.
#include "host/exchange/adapter_echo.h"

namespace dx4::host {

AdapterEcho::State AdapterEcho::state() const
{
    if (m_mode != EchoMode::Auto)
        return m_mode == EchoMode::Yes ? State::Present : State::Absent;
    if (m_echoes >= exchangesToBelieve)
        return State::Present;
    return m_clean >= cleanToBelieve() ? State::Absent : State::Unknown;
}

/// A reply without an echo is no proof, as an adapter may lose one. Where there was an echo already
/// it takes many more: a line that loses one in ten loses three in a row every other minute.
int AdapterEcho::cleanToBelieve() const
{
    return m_hasEchoed ? cleanAfterAnEcho : exchangesToBelieve;
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
