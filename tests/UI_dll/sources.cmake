target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_devcaps.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_edit_sheet.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_every_field.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_faults.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_fonts.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_help.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_list_rules.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_module.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_page_general.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_page_pdf_version.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_pages.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_restore_defaults.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_settings_page.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_settings_transfer.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_sheets.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_untouched.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/UI_dll/test_view_box.cpp)
