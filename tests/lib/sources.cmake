target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/lib/test_devmode_convert.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/lib/test_devmode_merge.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/lib/test_forms.cpp)
