// SPDX-License-Identifier: MIT
// A library that is linked to the other Qt, and ends the program that runs any of it.
#include <cstdlib>

extern "C" void ofTheOtherQt();

namespace {

__attribute__((constructor)) void runs()
{
    ofTheOtherQt();
    std::abort();
}

} // namespace
