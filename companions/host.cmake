# The host program. What it is made of lies in one library, which the tests link.
add_library(zr_host_core STATIC
    host/child.cpp
    host/console.cpp
    host/driver_module.cpp
    host/event_player.cpp
    host/field_ranges.cpp
    host/host_error.cpp
    host/install.cpp
    host/job.cpp
    host/job_report.cpp
    host/json_text.cpp
    host/options.cpp
    host/output_target.cpp
    host/page_layout.cpp
    host/page_printer.cpp
    host/print_processor.cpp
    host/printer_setup.cpp
    host/properties.cpp
    host/record_fields.cpp
    host/renderer.cpp
    host/report_parts.cpp
    host/setting_check.cpp
    host/setting_choice.cpp
    host/setting_report.cpp
    host/setting_sense.cpp
    host/sheet_host.cpp
    host/sheet_watch.cpp
    host/spool_file.cpp
    host/stage_files.cpp
    host/text_file.cpp
    host/trace_output.cpp)
target_link_libraries(zr_host_core PUBLIC zr_companions)

add_executable(zr_print host/main.cpp host/zr_print.rc)
set_source_files_properties(host/zr_print.rc PROPERTIES OBJECT_DEPENDS
    "${CMAKE_CURRENT_SOURCE_DIR}/host/Vantrix.ppd;${CMAKE_CURRENT_SOURCE_DIR}/host/zr_print.manifest;${CMAKE_CURRENT_SOURCE_DIR}/host/resource.h")
target_link_libraries(zr_print PRIVATE zr_host_core)
target_link_options(zr_print PRIVATE -municode)
set_target_properties(zr_print PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage)
