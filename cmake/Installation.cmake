# What "cmake --install" puts where. Everything built against Qt lies in places of its own for Qt 5 and
# Qt 6, so that both can be installed side by side: the plug-in, the host library and their targets.
include(CMakePackageConfigHelpers)

set(KORVANE_QT_FOLDER "qt${QT_VERSION_MAJOR}")
set(KORVANE_INSTALL_PLUGINDIR "${CMAKE_INSTALL_LIBDIR}/korvane_dx4/${KORVANE_QT_FOLDER}")
set(KORVANE_INSTALL_HEADERDIR "${CMAKE_INSTALL_INCLUDEDIR}/korvane_dx4")
set(KORVANE_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/korvane_dx4")
# Programs look for the plug-in from where they lie, so that the tree can be moved.
file(RELATIVE_PATH KORVANE_PLUGINDIR_FROM_BINDIR "${CMAKE_INSTALL_FULL_BINDIR}"
  "${CMAKE_INSTALL_FULL_LIBDIR}/korvane_dx4/${KORVANE_QT_FOLDER}")

# Appends to `list` the headers that `header` includes by quotes, and theirs, and itself at last.
function(korvane_with_includes list header)
  if(header IN_LIST ${list})
    return()
  endif()
  file(STRINGS "${PROJECT_SOURCE_DIR}/${header}" includes REGEX "^#include \"")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" include "${include}")
    if(EXISTS "${PROJECT_SOURCE_DIR}/${include}")
      korvane_with_includes(${list} "${include}")
    endif()
  endforeach()
  set(${list} ${${list}} "${header}" PARENT_SCOPE)
endfunction()

# Installs public headers and all that they include. The folders below the one of the project are those
# of the tree; the headers of include/ lie above them.
function(korvane_install_headers)
  set(headers "")
  foreach(header IN LISTS ARGN)
    korvane_with_includes(headers "${header}")
  endforeach()
  foreach(header IN LISTS headers)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${KORVANE_INSTALL_HEADERDIR}/${folder}"
      COMPONENT development)
  endforeach()
endfunction()

# Makes what find_package(korvane_dx4 COMPONENTS <component>) gives of targets. What needs no Qt lies in
# the folder above those of the two.
function(korvane_install_component component)
  cmake_parse_arguments(PARSE_ARGV 1 component "WITHOUT_QT" "" "TARGETS")
  set(folder "${KORVANE_INSTALL_CMAKEDIR}/${KORVANE_QT_FOLDER}")
  if(component_WITHOUT_QT)
    set(folder "${KORVANE_INSTALL_CMAKEDIR}")
  endif()
  install(TARGETS ${component_TARGETS} EXPORT korvane_dx4_${component}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT host NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
    INCLUDES DESTINATION "${KORVANE_INSTALL_HEADERDIR}")
  install(EXPORT korvane_dx4_${component} NAMESPACE korvane_dx4:: FILE "${component}.cmake"
    DESTINATION "${folder}" COMPONENT development)
endfunction()

# A library as it is installed, of the objects of other targets: korvane_<name>_shared, which exports what
# <name>/korvane_<name>.map lists, and korvane_<name>_static.
function(korvane_installed_library name)
  cmake_parse_arguments(PARSE_ARGV 1 library "" "" "OBJECTS;NEEDS;LINKS")
  set(export_list "${PROJECT_SOURCE_DIR}/${name}/korvane_${name}.map")
  add_library(korvane_${name}_shared SHARED ${library_OBJECTS})
  target_link_options(korvane_${name}_shared PRIVATE "-Wl,--version-script=${export_list}"
    $<$<NOT:$<BOOL:${KORVANE_SANITIZE}>>:-Wl,-z,defs>)
  # The build's run path is relative as well: installing overwrites it, but the room it took and the build
  # id that the linker made with it stay, and would differ with the folder of the build.
  set_target_properties(korvane_${name}_shared PROPERTIES
    EXPORT_NAME ${name} LINK_DEPENDS "${export_list}" INSTALL_RPATH "$ORIGIN" BUILD_RPATH_USE_ORIGIN ON
    VERSION "${PROJECT_VERSION}" SOVERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
  add_library(korvane_${name}_static STATIC ${library_OBJECTS})
  set_target_properties(korvane_${name}_static PROPERTIES EXPORT_NAME ${name}_static)
  foreach(kind IN ITEMS shared static)
    set_target_properties(korvane_${name}_${kind} PROPERTIES
      LINKER_LANGUAGE CXX OUTPUT_NAME "korvane_${name}_${KORVANE_QT_FOLDER}"
      ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib" LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
    target_link_libraries(korvane_${name}_${kind} PUBLIC ${library_NEEDS} PRIVATE ${library_LINKS})
  endforeach()
  korvane_install_component(${name} TARGETS korvane_${name}_shared)
  # A component by itself, as an archive asks more of those who link it.
  korvane_install_component(${name}_static TARGETS korvane_${name}_static)
endfunction()

# Fills in a pkg-config file from cmake/package/<template>.pc.in. Its paths are told from where it lies, so
# that the tree can be moved.
function(korvane_install_pkgconfig template name)
  file(RELATIVE_PATH up "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
  string(REGEX REPLACE "/$" "" KORVANE_PC_PREFIX "\${pcfiledir}/${up}")
  file(RELATIVE_PATH KORVANE_PC_LIBDIR "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  file(RELATIVE_PATH KORVANE_PC_HEADERDIR "${CMAKE_INSTALL_PREFIX}"
    "${CMAKE_INSTALL_FULL_INCLUDEDIR}/korvane_dx4")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/package/${template}.pc.in"
    "${PROJECT_BINARY_DIR}/package/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/package/${name}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endfunction()

# A program with its manual page and completions.
function(korvane_install_program name component)
  install(TARGETS ${name} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${component})
  install(FILES "${PROJECT_SOURCE_DIR}/docs/man/${name}.1"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${component})
  install(FILES "completion/${name}.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME "${name}" COMPONENT ${component})
  install(FILES "completion/${name}.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT ${component})
  install(FILES "completion/_${name}"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" COMPONENT ${component})
endfunction()

# Documents and examples, the package itself, and "cmake --build BUILD --target uninstall".
function(korvane_install_package)
  install(FILES CHANGELOG.md LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
  install(DIRECTORY docs/ DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation
    FILES_MATCHING PATTERN "*.md" PATTERN "examples/*.cpp" PATTERN "examples/*.toml" PATTERN "examples/*.rules"
    PATTERN images EXCLUDE PATTERN man EXCLUDE)

  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/package/korvane_dx4-config.cmake.in"
    "${PROJECT_BINARY_DIR}/package/korvane_dx4-config.cmake"
    INSTALL_DESTINATION "${KORVANE_INSTALL_CMAKEDIR}" PATH_VARS CMAKE_INSTALL_LIBDIR)
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/korvane_dx4-config-version.cmake"
    COMPATIBILITY SameMinorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/package/korvane_dx4-config.cmake"
    "${PROJECT_BINARY_DIR}/package/korvane_dx4-config-version.cmake"
    DESTINATION "${KORVANE_INSTALL_CMAKEDIR}" COMPONENT development)

  configure_file("${PROJECT_SOURCE_DIR}/cmake/package/uninstall.cmake.in"
    "${PROJECT_BINARY_DIR}/package/uninstall.cmake" @ONLY)
  add_custom_target(uninstall
    COMMAND "${CMAKE_COMMAND}" -P "${PROJECT_BINARY_DIR}/package/uninstall.cmake"
    COMMENT "Removing what install_manifest.txt lists" VERBATIM)

  # "cpack" makes an archive of all that, for machines without Debian's packages.
  set(CPACK_GENERATOR TXZ)
  set(CPACK_PACKAGE_FILE_NAME
    "korvane_dx4-${PROJECT_VERSION}-${KORVANE_QT_FOLDER}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
  set(CPACK_STRIP_FILES ON)
  set(CPACK_SOURCE_GENERATOR TXZ)
  set(CPACK_SOURCE_IGNORE_FILES "/build;/\\.git")
  set(CPACK_SOURCE_PACKAGE_FILE_NAME "korvane_dx4-${PROJECT_VERSION}")
  set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
  include(CPack)
endfunction()
