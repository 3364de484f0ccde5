target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_host_files.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_command_lines.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_host_process.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_host_text.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_print_processor.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_print_processor_jobs.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_setting_check.cpp)
target_link_libraries(zr_tests PRIVATE zr_host_core)
add_dependencies(zr_tests zr_print zr_processor)
