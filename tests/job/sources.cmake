target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/job/test_end.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/job/test_output_name.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/job/test_refused.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/job/test_start.cpp)
