# Run by CPack between the installation and the packing. What was installed below the program's own prefix for the
# system to find goes to where the system of a package looks for it, in the form that its rules want.
set(readable OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(tree ${CPACK_TEMPORARY_DIRECTORY}/${component})
  set(share ${tree}/usr/share)
  set(doc ${share}/doc/${package})
  file(MAKE_DIRECTORY ${tree}/usr/bin)
  file(RENAME ${tree}${CPACK_PACKAGING_INSTALL_PREFIX}/share ${share})

  file(GLOB programs RELATIVE ${tree}${CPACK_PACKAGING_INSTALL_PREFIX}/bin
    ${tree}${CPACK_PACKAGING_INSTALL_PREFIX}/bin/*)
  foreach(program IN LISTS programs)
    file(CREATE_LINK ${CPACK_PACKAGING_INSTALL_PREFIX}/bin/${program} ${tree}/usr/bin/${program} SYMBOLIC)
  endforeach()

  if(EXISTS ${share}/zsh)
    file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
  endif()

  file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright ${CMAKE_CURRENT_LIST_DIR}/changelog DESTINATION ${doc}
    FILE_PERMISSIONS ${readable})
  file(COPY ${CMAKE_CURRENT_LIST_DIR}/lintian/${package} DESTINATION ${share}/lintian/overrides
    FILE_PERMISSIONS ${readable})
  file(GLOB packed ${doc}/changelog ${share}/man/man1/*.1)
  execute_process(COMMAND gzip -9n ${packed} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
