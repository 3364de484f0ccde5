# The common property-sheet host. What it is made of lies in one library, which the tests link.
add_library(zr_compstui_core STATIC
    compstui/group.cpp
    compstui/node.cpp
    compstui/option_item.cpp
    compstui/page.cpp
    compstui/sheet.cpp
    compstui/sheet_functions.cpp
    compstui/sheet_size.cpp
    compstui/strings.cpp)
target_link_libraries(zr_compstui_core PUBLIC zr_ui_core comctl32)

add_library(compstui SHARED compstui/compstui.cpp compstui/compstui.def)
target_link_libraries(compstui PRIVATE zr_compstui_core)
set_target_properties(compstui PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage)
