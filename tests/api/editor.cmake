# What a host meets before and beside the cycle: records, settings, the editor's calls, the frames.
korvane_api_test(api_identity_test identity_test.cpp)
korvane_api_test(api_init_property_test init_property_test.cpp)
korvane_api_test(api_register_catalog_test register_catalog_test.cpp)
korvane_api_test(api_address_check_test address_check_test.cpp address_validity_test.cpp)
korvane_api_test(api_multi_copy_test multi_copy_test.cpp)
korvane_api_test(api_recipe_address_test recipe_address_test.cpp)
korvane_api_test(api_request_frames_test read_frames_test.cpp write_frames_test.cpp)
korvane_api_test(api_records_test records_test.cpp)
