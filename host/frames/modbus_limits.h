// SPDX-License-Identifier: MIT
#pragma once

#include "wire/limits.h"

namespace dx4::host {
using dx4::largestBlock;
using dx4::lastStation;
} // namespace dx4::host
