# Finds Qwt for the Qt of this build: Qwt::Qwt, with the library and the folder of its headers. Qwt is under
# the LGPL with exceptions; it is linked as a shared library.
find_path(Qwt_INCLUDE_DIR qwt_plot.h
  PATH_SUFFIXES qwt qwt6 qwt-qt${QT_VERSION_MAJOR} qwt6-qt${QT_VERSION_MAJOR} qt${QT_VERSION_MAJOR}/qwt)
# No plain "qwt": nothing would say which Qt it is for.
find_library(Qwt_LIBRARY NAMES qwt-qt${QT_VERSION_MAJOR} qwt6-qt${QT_VERSION_MAJOR})
if(Qwt_INCLUDE_DIR)
  file(STRINGS "${Qwt_INCLUDE_DIR}/qwt_global.h" Qwt_VERSION REGEX "define +QWT_VERSION_STR")
  string(REGEX REPLACE ".*\"(.*)\".*" "\\1" Qwt_VERSION "${Qwt_VERSION}")
endif()
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Qwt
  REQUIRED_VARS Qwt_LIBRARY Qwt_INCLUDE_DIR VERSION_VAR Qwt_VERSION)
if(Qwt_FOUND AND NOT TARGET Qwt::Qwt)
  add_library(Qwt::Qwt UNKNOWN IMPORTED)
  set_target_properties(Qwt::Qwt PROPERTIES
    IMPORTED_LOCATION "${Qwt_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Qwt_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES Qt${QT_VERSION_MAJOR}::Widgets)
endif()
mark_as_advanced(Qwt_INCLUDE_DIR Qwt_LIBRARY)
