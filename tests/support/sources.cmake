# Stands in for the save-file dialog library; copied into a test's installation folder under that name.
add_library(fake_tessalo SHARED ${CMAKE_CURRENT_SOURCE_DIR}/support/fake_tessalo.cpp)
target_include_directories(fake_tessalo PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(fake_tessalo PRIVATE zr_options)
set_target_properties(fake_tessalo PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage)
add_dependencies(zr_tests fake_tessalo)
target_sources(zr_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/support/module_calls.cpp)
# How the module's imports fail.
configure_file(${CMAKE_CURRENT_SOURCE_DIR}/support/module_imports.txt
    ${CMAKE_BINARY_DIR}/test_data/module_imports.txt COPYONLY)
