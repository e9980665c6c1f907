# What Windows wants of a program beside its code: icon, version and manifest in its file, and an installer.
enable_language(RC)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(VELMORA_ICON ${CMAKE_BINARY_DIR}/velmora.ico)
set(icon_drawing ${CMAKE_SOURCE_DIR}/src/resources/art/ICON/128.svg)
add_custom_command(OUTPUT ${VELMORA_ICON}
  COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/make_icon.py ${icon_drawing} ${VELMORA_ICON}
  DEPENDS ${icon_drawing} ${CMAKE_CURRENT_LIST_DIR}/make_icon.py)
add_custom_target(velmora_windows_icon DEPENDS ${VELMORA_ICON})

# A library of its own, since a source that is made goes with the folder that makes it.
function(velmora_windows_resources program description)
  set(resources ${CMAKE_BINARY_DIR}/${program}.rc)
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/program.rc.in ${resources} @ONLY)
  set_source_files_properties(${resources} PROPERTIES
    OBJECT_DEPENDS "${VELMORA_ICON};${CMAKE_CURRENT_FUNCTION_LIST_DIR}/program.manifest")
  add_library(${program}-resources OBJECT ${resources})
  add_dependencies(${program}-resources velmora_windows_icon)
  target_sources(${program} PRIVATE $<TARGET_OBJECTS:${program}-resources>)
endfunction()
velmora_windows_resources(velmora-convert "Converts Outlook stores to new .pst files")
if(VELMORA_WIZARD)
  velmora_windows_resources(velmora "Wizard that converts Outlook stores to new .pst files")
endif()

find_program(VELMORA_MAKENSIS makensis REQUIRED)
set(VELMORA_INSTALLER ${CMAKE_BINARY_DIR}/velmora-convert-${PROJECT_VERSION}-setup.exe)
set(installed velmora-convert)
if(VELMORA_WIZARD)
  set(VELMORA_INSTALLER ${CMAKE_BINARY_DIR}/velmora-${PROJECT_VERSION}-setup.exe)
  list(APPEND installed velmora velmora_guide)
  set(with_wizard -DWIZARD=${VELMORA_TREE})
endif()
add_custom_command(OUTPUT ${VELMORA_INSTALLER}
  COMMAND ${VELMORA_MAKENSIS} -V2 -WX -NOCD -DVERSION=${PROJECT_VERSION} -DPROGRAM=$<TARGET_FILE:velmora-convert>
    -DSOURCES=${CMAKE_SOURCE_DIR} -DICON=${VELMORA_ICON} -DINSTALLER=${VELMORA_INSTALLER} ${with_wizard}
    ${CMAKE_CURRENT_LIST_DIR}/installer.nsi
  DEPENDS ${installed} ${CMAKE_CURRENT_LIST_DIR}/installer.nsi ${CMAKE_SOURCE_DIR}/docs/command-line.md
    ${CMAKE_SOURCE_DIR}/docs/exit-codes.md)
add_custom_target(velmora_windows_installer ALL DEPENDS ${VELMORA_INSTALLER})
