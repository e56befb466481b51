// SPDX-License-Identifier: MIT
// CPU time of whole exchanges over a pseudo-terminal.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace bench {

inline constexpr int ptySpeed = 115200;
inline constexpr int ptyRegisters = 16;
inline constexpr int ptyAddress = 0xD000;
inline constexpr int ptyExchanges = 300;

/// Silence that separates two frames above 19200 bit/s.
inline constexpr std::chrono::microseconds ptySilence { 1750 };

/// The reference host with the driver; absent when the host is not built.
void pollByHost(benchmark::State &state);

/// Qt's serial bus client; absent when Qt SerialBus is not there.
void pollBySerialBus(benchmark::State &state);

} // namespace bench
