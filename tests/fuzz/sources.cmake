# Damaged input for everything that reads what others write; ten seconds of it are a test.
add_executable(zr_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/kinds.cpp ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/main.cpp)
target_include_directories(zr_fuzz PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(zr_fuzz PRIVATE zr_host_core)
set_target_properties(zr_fuzz PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage
    CROSSCOMPILING_EMULATOR ${CMAKE_SOURCE_DIR}/scripts/run-test)
add_dependencies(zr_fuzz fake_tessalo)
add_test(NAME Fuzz.TenSeconds COMMAND zr_fuzz --seed 1 --seconds 10)
set_tests_properties(Fuzz.TenSeconds PROPERTIES TIMEOUT 120)
