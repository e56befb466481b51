# -DKORVANE_REQUIRE_ALL=ON makes a component that would be left out an error of the configure step.
option(KORVANE_REQUIRE_ALL "Refuse to leave out a component whose library or tool is missing" OFF)

# Says what is left out and why.
function(korvane_left_out text)
  if(KORVANE_REQUIRE_ALL)
    message(FATAL_ERROR "${text} (KORVANE_REQUIRE_ALL is set)")
  endif()
  message(STATUS "${text}")
endfunction()
