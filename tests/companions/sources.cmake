target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_render_fields.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_render_parts.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_render_process.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/companions/test_tessalo.cpp)
target_link_libraries(zr_tests PRIVATE zr_companions)
add_dependencies(zr_tests Tessalo80 zr_render)
