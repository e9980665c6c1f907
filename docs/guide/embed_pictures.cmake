# cmake -D GUIDE=page.html -D OUT=whole.html -P embed_pictures.cmake
# Writes the page with every picture that it names put into it.
cmake_minimum_required(VERSION 3.25)
get_filename_component(folder ${GUIDE} DIRECTORY)
file(READ ${GUIDE} page)
string(REGEX MATCHALL "src=\"[^\"]+\\.png\"" references "${page}")
list(REMOVE_DUPLICATES references)
foreach(reference IN LISTS references)
  string(REGEX REPLACE "src=\"(.+)\"" "\\1" picture ${reference})
  execute_process(COMMAND base64 -w 0 ${folder}/${picture} OUTPUT_VARIABLE bytes COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE ${reference} "src=\"data:image/png;base64,${bytes}\"" page "${page}")
endforeach()
file(WRITE ${OUT} "${page}")
