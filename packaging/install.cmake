# Where things go below the prefix. The programs look for their own files beside the folder that they lie in, so a
# prefix of their own suits them; what the system looks for goes into the usual folders of share.
install(FILES ${CMAKE_SOURCE_DIR}/docs/velmora-convert.1 DESTINATION share/man/man1 COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/docs/command-line.md ${CMAKE_SOURCE_DIR}/docs/exit-codes.md
  DESTINATION share/doc/velmora-convert COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/docs/completions/velmora-convert.bash
  DESTINATION share/bash-completion/completions RENAME velmora-convert COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/docs/completions/_velmora-convert
  DESTINATION share/zsh/site-functions COMPONENT convert)

if(VELMORA_WIZARD)
  install(FILES ${CMAKE_SOURCE_DIR}/docs/velmora.1 DESTINATION share/man/man1 COMPONENT wizard)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/src/resources/lang/ DESTINATION Lang COMPONENT wizard)
endif()
