target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/common/test_disk_files.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/common/test_memory.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/common/test_notify.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/common/test_resources.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/common/test_setting_files.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/common/test_trace.cpp)
