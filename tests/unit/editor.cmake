# The modules behind addresses, recipes and request frames, in states that no host can reach.
korvane_unit_test(unit_address_text_test address_text_test.cpp)
korvane_unit_test(unit_register_tables_test register_tables_test.cpp)
korvane_unit_test(unit_recipe_test recipe_test.cpp)
korvane_unit_test(unit_readframe_test readframe_test.cpp)
korvane_unit_test(unit_writeframe_test writeframe_test.cpp)
korvane_unit_test(unit_frame_select_test frame_select_test.cpp)
korvane_unit_test(unit_wire_test crc16_test.cpp exception_name_test.cpp register_place_test.cpp)
