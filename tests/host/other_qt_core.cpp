// SPDX-License-Identifier: MIT
// What stands for the other Qt's library: its name is all that is asked for.
extern "C" __attribute__((visibility("default"))) void ofTheOtherQt();
void ofTheOtherQt() { }
