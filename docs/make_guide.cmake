# Run by the build: makes one page of HTML of the user's guide. SOURCE: the guide; TARGET: the page; CMARK: the program.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${CMARK} ${SOURCE} OUTPUT_VARIABLE body COMMAND_ERROR_IS_FATAL ANY)
# Tables are none of cmark's: a row becomes a row, the line below the headings goes.
string(REGEX REPLACE "\\|[-|]+\\|\n" "" body "${body}")
string(REGEX REPLACE "<p>\\| ([^\n]+) \\|" "<table>\n<tr><td>\\1</td></tr>" body "${body}")
string(REGEX REPLACE "\n\\| ([^\n]+) \\|</p>" "\n<tr><td>\\1</td></tr>\n</table>" body "${body}")
string(REGEX REPLACE "\n\\| ([^\n]+) \\|" "\n<tr><td>\\1</td></tr>" body "${body}")
string(REGEX REPLACE " \\| " "</td><td>" body "${body}")
file(WRITE ${TARGET} "<!DOCTYPE html>
<html lang=\"en\"><head><meta charset=\"utf-8\"><title>The PDF printer: a user's guide</title>
<style>body { max-width: 46em; margin: 2em auto; font-family: sans-serif; line-height: 1.4 }
img { max-width: 100% } td { border: 1px solid #aaa; padding: .3em .6em; vertical-align: top }
table { border-collapse: collapse }</style></head><body>
${body}</body></html>
")
