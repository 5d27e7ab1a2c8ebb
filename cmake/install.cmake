# What is installed: libraries in lib/, modules in lib/tx/, headers under include/, and what find_package(LMCommonMFC)
# reads. The program and the module LMTools install themselves where they are declared.
include(CMakePackageConfigHelpers)

set(lm_modules lm_lmcommon LMCommonMFC)
set(lm_package_folder "lib/cmake/LMCommonMFC")
set_target_properties(${lm_modules} PROPERTIES INSTALL_RPATH "$ORIGIN;$ORIGIN/..")
set_target_properties(lm_system lm_drawing lm_values lm_host PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS lm_options lm_system lm_drawing lm_values lm_host EXPORT LMCommonMFCTargets
        LIBRARY DESTINATION "lib")
install(TARGETS ${lm_modules} EXPORT LMCommonMFCTargets LIBRARY DESTINATION "lib/tx")

foreach(layer system drawing framework host lmcommon)
    install(DIRECTORY "${CMAKE_SOURCE_DIR}/platform/${layer}/include/" DESTINATION "include"
            FILES_MATCHING PATTERN "*.h")
endforeach()
# Headers for the inside of the library stay at home.
install(DIRECTORY "${CMAKE_SOURCE_DIR}/tx/LMCommonMFC/" DESTINATION "include/LMCommonMFC"
        FILES_MATCHING PATTERN "*.h"
        PATTERN "log.h" EXCLUDE
        PATTERN "module_entry.h" EXCLUDE
        PATTERN "icad_carrier.h" EXCLUDE
        PATTERN "icad_detail.h" EXCLUDE
        PATTERN "reactor/documents.h" EXCLUDE
        PATTERN "xmlfile.h" EXCLUDE
        PATTERN "xmllevels.h" EXCLUDE
        PATTERN "ceheap.h" EXCLUDE
        PATTERN "partscan.h" EXCLUDE
        PATTERN "workbook.h" EXCLUDE
        PATTERN "workbookguard.h" EXCLUDE)

if(LM_WINDOWS)
    set_target_properties(lm_host_windows lm_windows PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS lm_host_windows lm_windows EXPORT LMCommonMFCTargets LIBRARY DESTINATION "lib")
endif()

install(EXPORT LMCommonMFCTargets NAMESPACE LMCommonMFC:: DESTINATION "${lm_package_folder}")
configure_package_config_file("${CMAKE_SOURCE_DIR}/cmake/LMCommonMFCConfig.cmake.in"
                              "${CMAKE_BINARY_DIR}/LMCommonMFCConfig.cmake"
                              INSTALL_DESTINATION "${lm_package_folder}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/LMCommonMFCConfigVersion.cmake"
                                 COMPATIBILITY ExactVersion)
install(FILES "${CMAKE_BINARY_DIR}/LMCommonMFCConfig.cmake" "${CMAKE_BINARY_DIR}/LMCommonMFCConfigVersion.cmake"
        DESTINATION "${lm_package_folder}")
