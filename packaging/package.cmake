# Debian packages, one a component. The programs live in a tree of their own, /opt/velmora, beside the files that
# they look for; what the system looks for itself (a command's name, its manual, completions) is linked or
# installed where it looks.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "Velmora")
set(CPACK_PACKAGE_CONTACT "Velmora maintainers <maintainers@velmora.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://velmora.example")
set(CPACK_STRIP_FILES ON)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /opt/velmora)
set(CPACK_PACKAGE_FILE_NAME velmora-${PROJECT_VERSION})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION mail)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_COMPONENTS_ALL convert)
set(CPACK_DEBIAN_CONVERT_PACKAGE_NAME velmora-convert)
set(CPACK_COMPONENT_CONVERT_DESCRIPTION "convert Outlook stores to new .pst files
Reads an offline store (.ost) or a personal store (.pst) of Outlook, sound or
damaged, and writes the folders and items that it finds to a new .pst.

This package holds the command line program velmora-convert.")

set(VELMORA_DOC /usr/share/doc/velmora-convert)
install(FILES ${CMAKE_SOURCE_DIR}/docs/command-line.md ${CMAKE_SOURCE_DIR}/docs/exit-codes.md
  DESTINATION ${VELMORA_DOC} COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/copyright DESTINATION ${VELMORA_DOC} COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/packaging/velmora-convert.lintian DESTINATION /usr/share/lintian/overrides
  RENAME velmora-convert COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/docs/completions/velmora-convert.bash
  DESTINATION /usr/share/bash-completion/completions RENAME velmora-convert COMPONENT convert)
install(FILES ${CMAKE_SOURCE_DIR}/docs/completions/_velmora-convert
  DESTINATION /usr/share/zsh/vendor-completions COMPONENT convert)

# Manual and list of changes are packed as the system's rules want them.
find_program(VELMORA_GZIP gzip REQUIRED)
set(packed ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${packed})
add_custom_command(
  OUTPUT ${packed}/velmora-convert.1.gz ${packed}/changelog.gz
  COMMAND ${VELMORA_GZIP} -9nc ${CMAKE_SOURCE_DIR}/docs/velmora-convert.1 > ${packed}/velmora-convert.1.gz
  COMMAND ${VELMORA_GZIP} -9nc ${CMAKE_SOURCE_DIR}/packaging/changelog > ${packed}/changelog.gz
  DEPENDS ${CMAKE_SOURCE_DIR}/docs/velmora-convert.1 ${CMAKE_SOURCE_DIR}/packaging/changelog)
add_custom_target(velmora_packed_documents ALL DEPENDS ${packed}/velmora-convert.1.gz ${packed}/changelog.gz)
install(FILES ${packed}/velmora-convert.1.gz DESTINATION /usr/share/man/man1 COMPONENT convert)
install(FILES ${packed}/changelog.gz DESTINATION ${VELMORA_DOC} COMPONENT convert)
install(CODE [[
  file(MAKE_DIRECTORY $ENV{DESTDIR}/usr/bin)
  file(CREATE_LINK /opt/velmora/bin/velmora-convert $ENV{DESTDIR}/usr/bin/velmora-convert SYMBOLIC)
]] COMPONENT convert)

include(CPack)
