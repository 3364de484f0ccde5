target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_admin.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_bad_input.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_diff.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_model.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_passwords.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_ps4_read.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/test_ps4_write.cpp)
