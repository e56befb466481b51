// SPDX-License-Identifier: MIT
// The built plug-in, loaded by file, with its plain names as typed pointers.
#pragma once

#include "entry_points.h"

#include <string>

/// One dlopen of the driver's file; unloaded again when it goes out of scope.
class LoadedDriver : public EntryPoints {
public:
    /// Loads `file` with RTLD_NOW and resolves every name; ends the test program when one is
    /// missing.
    explicit LoadedDriver(const std::string &file = KORVANE_PLUGIN_FILE);
    ~LoadedDriver();
    LoadedDriver(const LoadedDriver &) = delete;
    LoadedDriver &operator=(const LoadedDriver &) = delete;

private:
    void *m_library;
};
