target_sources(zr_ui_core PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/PSAdmin.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/PrintSettings.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/display.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/json.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/legacy_reader.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/ps4_reader.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/ps4_writer.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/sections.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/setting_file.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/print_settings/setting_file_replace.cpp)
