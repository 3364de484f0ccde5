# The program that scripts/lint examines the language libraries with; it is not installed.
add_executable(zr_template_check
    template_check/dialog_template.cpp
    template_check/findings.cpp
    template_check/keyboard.cpp
    template_check/known_pages.cpp
    template_check/layout.cpp
    template_check/main.cpp
    template_check/measure.cpp
    template_check/self_test.cpp)
target_link_libraries(zr_template_check PRIVATE zr_ui_core)
target_link_options(zr_template_check PRIVATE -municode)
set_target_properties(zr_template_check PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/checks)
