# Finds Qt 5.15 or Qt 6 and gives it one name: korvane_qt_core.
if(KORVANE_QT_MAJOR STREQUAL "")
  find_package(QT NAMES Qt5 Qt6 REQUIRED COMPONENTS Core)
else()
  find_package(QT NAMES Qt${KORVANE_QT_MAJOR} REQUIRED COMPONENTS Core)
endif()
find_package(Qt${QT_VERSION_MAJOR} REQUIRED COMPONENTS Core)

add_library(korvane_qt_core INTERFACE)
target_link_libraries(korvane_qt_core INTERFACE Qt${QT_VERSION_MAJOR}::Core)
target_compile_definitions(korvane_qt_core INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x050F00
  QT_DEPRECATED_WARNINGS QT_NO_FOREACH QT_NO_KEYWORDS)
