# Black-box tests of the cycle: what goes out, what comes back, what the host reads and writes.
add_library(korvane_cycle_test_support STATIC cycle_fixture.cpp)
target_link_libraries(korvane_cycle_test_support PUBLIC korvane_test_support PRIVATE korvane_warnings)
target_include_directories(korvane_cycle_test_support PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")

function(korvane_cycle_test name)
  korvane_api_test(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE korvane_cycle_test_support)
endfunction()

korvane_cycle_test(api_polling_test
  condition_read_test.cpp merge_test.cpp recipe_request_test.cpp send_queue_test.cpp)
korvane_cycle_test(api_reply_test
  cycle_end_test.cpp error_text_test.cpp recipe_transfer_test.cpp recipe_values_test.cpp
  reply_test.cpp reply_values_test.cpp)
korvane_cycle_test(api_values_test
  callback_edits_test.cpp callback_reentry_test.cpp change_report_test.cpp data_area_test.cpp host_edits_test.cpp
  host_list_edits_test.cpp unruly_host_test.cpp write_outcome_test.cpp write_test.cpp)

# Counts allocations by a malloc of its own, which the sanitizers need for themselves.
if(NOT KORVANE_SANITIZE)
  korvane_cycle_test(api_allocation_test allocation_test.cpp)
endif()

# Built where the driver notices calls that overlap, as in the sanitizer build.
if(KORVANE_WATCH_CALLS)
  korvane_api_test(api_overlapping_calls_test overlapping_calls_test.cpp)
  target_link_libraries(api_overlapping_calls_test PRIVATE pthread)
endif()
