target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_devcaps.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_module.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_sheets.cpp)
