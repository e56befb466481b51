// SPDX-License-Identifier: MIT
// Decides which inputs may cost much.
#pragma once

#include <cstddef>
#include <cstdint>

/// True for about one input in `period`.
///
/// The fuzzer keeps what reaches new counts and changes that again and again, so that costly inputs
/// would soon be most of the inputs. A checksum over all bytes is new after every change and cannot
/// be preferred: the share of costly inputs stays what it is meant to be.
inline bool isRare(const std::uint8_t *data, std::size_t size, std::uint32_t period)
{
    std::uint32_t sum = 2166136261U;
    for (std::size_t i = 0; i < size; ++i)
        sum = (sum ^ data[i]) * 16777619U;
    return (sum >> 8) % period == 0;
}
