target_sources(zr_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/soak/soak.cpp)
target_link_libraries(zr_tests PRIVATE psapi)
