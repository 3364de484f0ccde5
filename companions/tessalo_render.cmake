# The save-file dialog library and the renderer. What both are made of lies in one library, which the tests link.
add_library(zr_companions STATIC
    command_line.cpp
    language_text.cpp
    leftovers.cpp
    render/arguments.cpp
    render/ascii85.cpp
    render/cancelling.cpp
    render/engine.cpp
    render/engine_arguments.cpp
    render/engine_log.cpp
    render/fonts.cpp
    render/glyph_names.cpp
    render/letter_names.cpp
    render/mark_drawing.cpp
    render/metadata.cpp
    render/outside.cpp
    render/page_work.cpp
    render/pdf_maker.cpp
    render/pdf_tool.cpp
    render/pdfmark.cpp
    render/pending_pdf.cpp
    render/prepared_spool.cpp
    render/protection.cpp
    render/render_job.cpp
    render/result_record.cpp
    render/scratch_folder.cpp
    render/spool_links.cpp
    render/spool_pictures.cpp
    render/spool_text.cpp
    render/standards.cpp
    render/unsupported.cpp
    render/viewer.cpp
    render/web_links.cpp
    reservation.cpp
    tessalo/options.cpp
    tessalo/output_choice.cpp
    tessalo/safe_name.cpp
    wine_layer.cpp)
target_link_libraries(zr_companions PUBLIC zr_ui_core)

add_library(Tessalo80 SHARED tessalo/dialogs.cpp tessalo/tessalo.cpp tessalo/tessalo.def)
target_link_libraries(Tessalo80 PRIVATE zr_companions)

add_executable(zr_render render/main.cpp)
target_link_libraries(zr_render PRIVATE zr_companions)
target_link_options(zr_render PRIVATE -municode)

set_target_properties(Tessalo80 zr_render PROPERTIES
    PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/stage)
