# Debian packages, one a component. The programs live in a tree of their own, /opt/velmora, beside the files that
# they look for; system_tree.cmake moves what the system looks for itself to where it looks.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "Velmora")
set(CPACK_PACKAGE_CONTACT "Velmora maintainers <maintainers@velmora.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://www.velmora.example")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /opt/velmora)
set(CPACK_PACKAGE_FILE_NAME velmora-${PROJECT_VERSION})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/system_tree.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE velmora)
set(CPACK_DEBIAN_PACKAGE_SECTION mail)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_COMPONENTS_ALL convert)
set(CPACK_DEBIAN_CONVERT_PACKAGE_NAME velmora-convert)
set(CPACK_DEBIAN_CONVERT_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/scripts/postrm)
set(CPACK_COMPONENT_CONVERT_DESCRIPTION "convert Outlook stores to new .pst files
Reads an offline store (.ost) or a personal store (.pst) of Outlook, sound or
damaged, and writes the folders and items that it finds to a new .pst.

This package holds the command line program velmora-convert.")

if(VELMORA_WIZARD)
  list(APPEND CPACK_COMPONENTS_ALL wizard)
  set(CPACK_DEBIAN_WIZARD_PACKAGE_NAME velmora)
  set(CPACK_DEBIAN_WIZARD_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/scripts/postrm)
  # Folders, the user guide and web pages are opened by what the desktop has for them.
  set(CPACK_DEBIAN_WIZARD_PACKAGE_DEPENDS xdg-utils)
  set(CPACK_DEBIAN_WIZARD_PACKAGE_RECOMMENDS velmora-convert)
  set(CPACK_COMPONENT_WIZARD_DESCRIPTION "wizard that converts Outlook stores to new .pst files
Reads an offline store (.ost) or a personal store (.pst) of Outlook, sound or
damaged, and writes the folders and items that it finds to a new .pst.

This package holds the wizard, a desktop program of a few steps, and the user
guide.")
endif()

include(CPack)
