# Tessivo as a desktop program: `cmake --install` puts the editor, its menu entry, its icon and
# its AppStream metainfo where a desktop looks for them, and CPack makes a Debian package of
# the same tree.
#
# The virtual-cs2x tool stays out: it puts the instrument's model behind JACK or ALSA ports for
# the end-to-end tests, while the editor has the same model built in as device 0 of both MIDI
# lists. A musician gains nothing from it.

include(GNUInstallDirs)

set(TESSIVO_APP_ID "org.tessivo.Tessivo")
set(TESSIVO_RELEASE_DATE "2026-11-24")  # of the version in project()
set(TESSIVO_PACKAGE_MAINTAINER "Tessivo developers <tessivo@example.org>"
    CACHE STRING "Maintainer field of the Debian package")

# A program started from its build tree keeps its preferences beside itself; this file there
# says so (src/shell/prefs.h). The install copies the program alone, never this file. Every
# folder of the build that holds a program gets one, so a benchmark or tool that starts the
# editor's logic never touches the user's own preferences.
function(tessivo_program_folders dir out)
  set(folders ${${out}})
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
      get_target_property(folder ${target} RUNTIME_OUTPUT_DIRECTORY)
      if(NOT folder)
        get_target_property(folder ${target} BINARY_DIR)
      endif()
      list(APPEND folders ${folder})
    endif()
  endforeach()
  get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(subdir IN LISTS subdirs)
    tessivo_program_folders(${subdir} folders)
  endforeach()
  list(REMOVE_DUPLICATES folders)
  set(${out} ${folders} PARENT_SCOPE)
endfunction()
function(tessivo_mark_program_folders)
  set(folders)
  tessivo_program_folders(${CMAKE_SOURCE_DIR} folders)
  foreach(folder IN LISTS folders)
    file(GENERATE OUTPUT "${folder}/tessivo.portable"
         CONTENT "Tessivo keeps its preferences (tessivo.ini) in the folder that holds this file.\n")
  endforeach()
endfunction()
# At the end of the top folder, when every program is declared.
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL tessivo_mark_program_folders)

install(TARGETS tessivo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
target_compile_definitions(tessivo PRIVATE TESSIVO_APP_ID="${TESSIVO_APP_ID}")

set(_pkg_out "${CMAKE_CURRENT_BINARY_DIR}/packaging")
configure_file(${CMAKE_CURRENT_LIST_DIR}/tessivo.desktop.in "${_pkg_out}/${TESSIVO_APP_ID}.desktop" @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/tessivo.metainfo.xml.in "${_pkg_out}/${TESSIVO_APP_ID}.metainfo.xml" @ONLY)
install(FILES "${_pkg_out}/${TESSIVO_APP_ID}.desktop" DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES "${_pkg_out}/${TESSIVO_APP_ID}.metainfo.xml" DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# The icon: drawn as SVG, drawn again at each hicolor size by librsvg.
set(_icon_svg ${CMAKE_CURRENT_LIST_DIR}/tessivo.svg)
install(FILES ${_icon_svg} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        RENAME ${TESSIVO_APP_ID}.svg)
find_program(RSVG_CONVERT rsvg-convert)
if(RSVG_CONVERT)
  set(_icon_pngs)
  foreach(size 16 22 24 32 48 64 128 256)
    set(_png "${_pkg_out}/icons/${size}x${size}/${TESSIVO_APP_ID}.png")
    add_custom_command(OUTPUT ${_png}
      COMMAND ${CMAKE_COMMAND} -E make_directory "${_pkg_out}/icons/${size}x${size}"
      COMMAND ${RSVG_CONVERT} --width=${size} --height=${size} --output=${_png} ${_icon_svg}
      DEPENDS ${_icon_svg} VERBATIM)
    list(APPEND _icon_pngs ${_png})
    install(FILES ${_png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
  add_custom_target(tessivo_icons ALL DEPENDS ${_icon_pngs})
else()
  message(WARNING "rsvg-convert (Debian package librsvg2-bin) not found: the icon is installed as SVG only, "
                  "and the package test fails")
endif()

# The Debian package. dpkg-shlibdeps finds the Qt 6, RtMidi and JACK runtime libraries the
# program links against and names their packages in Depends.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessivo)
set(CPACK_PACKAGE_VENDOR "Tessivo developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor and librarian for the Yamaha CS2x synthesizer")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TESSIVO_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "editor and librarian for the Yamaha CS2x synthesizer
Tessivo reads the instrument's Performance and its twelve Multi Parts over
MIDI System Exclusive, shows them on one form, auditions them, keeps a Layer
Pool, edits parameters live and saves its own file types. It talks to the
instrument through the ALSA sequencer or JACK; a built-in virtual instrument
lets it be tried without hardware.")
include(CPack)

# Not for a sanitizer build: that program is no one's to install.
if(BUILD_TESTING AND NOT TESSIVO_SANITIZE)
  # Builds the package, checks it, installs it and starts the installed program on Xvfb.
  add_test(NAME package
           COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/package_test.sh ${CMAKE_BINARY_DIR} ${TESSIVO_APP_ID} ${PROJECT_VERSION})
  set_tests_properties(package PROPERTIES TIMEOUT 120 RUN_SERIAL TRUE)
endif()
