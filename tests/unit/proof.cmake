# Guards against misuse and states that only a host's edits bring about.
korvane_unit_test(unit_guard_test guard_test.cpp driver_state.cpp)
