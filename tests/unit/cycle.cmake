# White-box tests of the cycle: internals and states that no host can reach.
korvane_unit_test(unit_cycle_test
  address_merge_test.cpp change_report_test.cpp cycle_end_test.cpp data_areas_test.cpp
  driver_state.cpp error_text_test.cpp reply_check_test.cpp writes_test.cpp)
