target_sources(zr_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/companions/compstui_sheet.cpp)
target_link_libraries(zr_tests PRIVATE zr_compstui_core)
add_dependencies(zr_tests compstui)
