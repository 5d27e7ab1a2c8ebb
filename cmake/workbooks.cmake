# What workbooks need: QXlsx::QXlsx, which reads and writes them, and libzip::zip, which looks into their archives first.
#
# QXlsx is taken from the system where it has one for Qt 6, from QXlsx_DIR, or from where ./dev builds it.
find_package(Qt6 REQUIRED COMPONENTS Core Gui)
find_package(QXlsxQt6 QUIET)
if(NOT QXlsxQt6_FOUND)
    find_package(QXlsx QUIET PATHS "${CMAKE_SOURCE_DIR}/build/qxlsx-1.4.4" NO_DEFAULT_PATH)
endif()
if(NOT TARGET QXlsx::QXlsx)
    message(FATAL_ERROR "QXlsx is missing; './dev test' builds it, or pass its QXlsx_DIR.")
endif()
# Its headers warn in places that aren't ours.
get_target_property(lm_qxlsx_includes QXlsx::QXlsx INTERFACE_INCLUDE_DIRECTORIES)
set_target_properties(QXlsx::QXlsx PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${lm_qxlsx_includes}")

find_path(LM_ZIP_INCLUDE zip.h)
find_library(LM_ZIP_LIBRARY zip)
if(NOT LM_ZIP_INCLUDE OR NOT LM_ZIP_LIBRARY)
    message(FATAL_ERROR "libzip is missing; './dev test' installs it.")
endif()
add_library(libzip::zip UNKNOWN IMPORTED)
set_target_properties(libzip::zip PROPERTIES IMPORTED_LOCATION "${LM_ZIP_LIBRARY}"
                      INTERFACE_INCLUDE_DIRECTORIES "${LM_ZIP_INCLUDE}")
