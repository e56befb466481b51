# Finds Qt 5.15 or Qt 6 and gives it one name: korvane_qt_core.
if(KORVANE_QT_MAJOR)
  set(QT_VERSION_MAJOR "${KORVANE_QT_MAJOR}")
else()
  find_package(Qt5 5.15 QUIET COMPONENTS Core)
  if(Qt5_FOUND)
    set(QT_VERSION_MAJOR 5)
  else()
    set(QT_VERSION_MAJOR 6)
  endif()
endif()
find_package(Qt${QT_VERSION_MAJOR} REQUIRED COMPONENTS Core)

add_library(korvane_qt_core INTERFACE)
target_link_libraries(korvane_qt_core INTERFACE Qt${QT_VERSION_MAJOR}::Core)
# Our own strictness is nothing to ask of those who use an installed header.
target_compile_definitions(korvane_qt_core INTERFACE $<BUILD_INTERFACE:
  QT_NO_CAST_FROM_ASCII;QT_NO_CAST_TO_ASCII;QT_DISABLE_DEPRECATED_BEFORE=0x050F00;QT_DEPRECATED_WARNINGS;QT_NO_FOREACH;QT_NO_KEYWORDS>)
