// SPDX-License-Identifier: MIT
// RapidCheck inside GoogleTest; its header expects that of GoogleTest before it.
#pragma once

#include <gtest/gtest.h>

#include <rapidcheck.h>

#include <rapidcheck/gtest.h>
