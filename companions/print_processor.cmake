# The print processor, by which every program's documents become PDFs.
add_library(zr_processor SHARED
    print_processor/pdf_job.cpp
    print_processor/print_processor.cpp
    print_processor/print_processor.def
    print_processor/print_processor.rc
    print_processor/progress_window.cpp
    print_processor/renderer_watch.cpp
    print_processor/spooled_job.cpp)
set_source_files_properties(print_processor/print_processor.rc PROPERTIES
    OBJECT_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/print_processor/resource.h)
target_link_libraries(zr_processor PRIVATE zr_host_core)
set_target_properties(zr_processor PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage)
