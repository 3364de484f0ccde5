# Run by the build: makes one page of HTML of the user's guide, and beside it a page for each chapter that leads there.
# SOURCE: the guide; TARGET: the page, "user-guide.html" or "user-guide.<language>.html"; CMARK: the program.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${CMARK} ${SOURCE} OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)
# Tables are none of cmark's: a row becomes a row, the line below the headings goes.
string(REGEX REPLACE "\\|[-|]+\\|\n" "" body "${body}")
string(REGEX REPLACE "<p>\\| ([^\n]+) \\|" "<table>\n<tr><td>\\1</td></tr>" body "${body}")
string(REGEX REPLACE "\n\\| ([^\n]+) \\|</p>" "\n<tr><td>\\1</td></tr>\n</table>" body "${body}")
string(REGEX REPLACE "\n\\| ([^\n]+) \\|" "\n<tr><td>\\1</td></tr>" body "${body}")
string(REGEX REPLACE " \\| " "</td><td>" body "${body}")
# A heading with a picture below it begins the chapter of a page of the dialog, which is called like the picture in every
# language.
string(REGEX REPLACE "<h([23])>([^<]+)</h[23]>\n<p>(<img src=\"img/[a-z]+/([a-z-]+)-96\\.png\")"
    "<h\\1 id=\"\\4\">\\2</h\\1>\n<p>\\3" body "${body}")
get_filename_component(name ${TARGET} NAME)
get_filename_component(folder ${TARGET} DIRECTORY)
get_filename_component(source ${SOURCE} ABSOLUTE)
get_filename_component(source_folder ${source} DIRECTORY)
string(REGEX MATCHALL "img/[a-z]+/[a-z0-9-]+\\.png" pictures "${body}")
foreach(picture IN LISTS pictures)
    if(NOT EXISTS ${source_folder}/${picture})
        # What draws the pictures needs the built tree first.
        message(WARNING "${picture} is not drawn yet (scripts/screenshots) and left out")
        string(REGEX REPLACE "<p><img src=\"${picture}\"[^>]*></p>\n" "" body "${body}")
        continue()
    endif()
    get_filename_component(place ${folder}/${picture} DIRECTORY)
    file(COPY ${source_folder}/${picture} DESTINATION ${place})
endforeach()

set(title "The PDF printer: a user's guide")
file(WRITE ${TARGET} "<!DOCTYPE html>
<html lang=\"en\"><head><meta charset=\"utf-8\"><title>${title}</title>
<style>body { max-width: 46em; margin: 2em auto; font-family: sans-serif; line-height: 1.4 }
img { max-width: 100% } td { border: 1px solid #aaa; padding: .3em .6em; vertical-align: top }
table { border-collapse: collapse }</style></head><body>
${body}</body></html>
")

string(REGEX MATCHALL "<h[23] id=\"[a-z-]+\"" chapters "${body}")
foreach(chapter IN LISTS chapters)
    string(REGEX REPLACE ".*\"(.*)\"" "\\1" chapter "${chapter}")
    string(REPLACE "user-guide" "${chapter}" page "${name}")
    file(WRITE ${folder}/${page} "<!DOCTYPE html>
<html lang=\"en\"><head><meta charset=\"utf-8\"><title>${title}</title>
<meta http-equiv=\"refresh\" content=\"0; url=${name}#${chapter}\"></head><body>
<a href=\"${name}#${chapter}\">${title}</a></body></html>
")
endforeach()
