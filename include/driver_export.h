// SPDX-License-Identifier: MIT
// The one macro that makes a name visible outside the shared library.
#pragma once

/// Everything is compiled with hidden visibility; this marks the entry points and `driver`.
/// The linker's list in src/korvane_dx4/korvane_dx4.map names the same symbols once more, so that
/// neither an unmarked entry point nor a marked helper can slip through unnoticed.
#define KORVANE_EXPORT __attribute__((visibility("default")))
