# The examples are taken from the document itself.
configure_file(${CMAKE_SOURCE_DIR}/docs/for-administrators.md
    ${CMAKE_BINARY_DIR}/test_data/for-administrators.md COPYONLY)
target_sources(zr_tests PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR}/docs/test_administrator_examples.cpp)
