// SPDX-License-Identifier: MIT
// A serial line in memory for libmodbus: one descriptor whose bytes never reach the kernel.
#pragma once

#include <QByteArray>

namespace bench {

/// Descriptor to hand to modbus_set_socket. write, read and select on it are answered by this
/// program; on any other descriptor they go to the system.
int memoryLineDescriptor();

/// The bytes that answer the next request. `reply` must outlive their reading.
void setMemoryReply(const QByteArray &reply);

} // namespace bench
