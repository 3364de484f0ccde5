# The print processor, by which every program's documents become PDFs.
add_library(zr_processor SHARED
    print_processor/pdf_job.cpp
    print_processor/print_processor.cpp
    print_processor/print_processor.def
    print_processor/spooled_job.cpp)
target_link_libraries(zr_processor PRIVATE zr_host_core)
set_target_properties(zr_processor PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage)
