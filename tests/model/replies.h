// SPDX-License-Identifier: MIT
// Replies to a request: right, wrong and absent.
#pragma once

#include "byte_source.h"
#include "host_records.h"

#include <QByteArray>

namespace model {

/// The right answer to `request`, its values drawn from the source.
QByteArray rightReply(ByteSource &source, const FRAME_PRO &request);

/// Mostly the right answer, else one of the ways in which a line spoils it.
QByteArray anyReply(ByteSource &source, const FRAME_PRO &request);

} // namespace model
