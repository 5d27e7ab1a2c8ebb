# Declares the libraries of the tree and refuses a link that the layer table doesn't list.
#
#   lm_library(<layer> SHARED|OBJECT [OUTPUT <file name>] USES <layers and components> SOURCES <files>)
#
# A library is named lm_<layer>. Nothing else in the tree calls target_link_libraries on these targets.

file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/layers.txt" lm_rows REGEX "^[a-zA-Z]")
set_property(DIRECTORY "${CMAKE_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             "${CMAKE_CURRENT_LIST_DIR}/layers.txt")
foreach(row IN LISTS lm_rows)
    string(REGEX REPLACE " *\\| *" ";" cells "${row}")
    list(GET cells 0 name)
    list(GET cells 2 allowed)
    string(STRIP "${name}" name)
    string(REGEX REPLACE " +" ";" allowed "${allowed}")
    set(LM_ALLOWED_${name} "${allowed}")
endforeach()

function(lm_check_uses layer)
    if(NOT DEFINED LM_ALLOWED_${layer})
        message(FATAL_ERROR "layer '${layer}' has no row in cmake/layers.txt")
    endif()
    foreach(used IN LISTS ARGN)
        if(NOT used IN_LIST LM_ALLOWED_${layer})
            message(FATAL_ERROR "layer '${layer}' may not use '${used}': cmake/layers.txt lists "
                                "'${LM_ALLOWED_${layer}}'")
        endif()
    endforeach()
endfunction()

# Turns layer names into target names and leaves outside components as they are.
function(lm_targets_of out)
    set(result)
    foreach(used IN LISTS ARGN)
        if(used MATCHES "::")
            list(APPEND result "${used}")
        elseif(NOT used STREQUAL "installed")
            list(APPEND result "lm_${used}")
        endif()
    endforeach()
    set(${out} "${result}" PARENT_SCOPE)
endfunction()

function(lm_library layer kind)
    cmake_parse_arguments(ARG "" "OUTPUT;INCLUDE" "USES;SOURCES" ${ARGN})
    lm_check_uses(${layer} ${ARG_USES})
    lm_targets_of(links ${ARG_USES})
    add_library(lm_${layer} ${kind} ${ARG_SOURCES})
    target_link_libraries(lm_${layer} PUBLIC lm_options ${links})
    if(ARG_INCLUDE)
        target_include_directories(lm_${layer} PUBLIC
            "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/${ARG_INCLUDE}>" "$<INSTALL_INTERFACE:include>")
    endif()
    string(TOUPPER "LM_BUILD_${layer}" define)
    target_compile_definitions(lm_${layer} PRIVATE ${define})
    set_target_properties(lm_${layer} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    if(ARG_OUTPUT)
        set_target_properties(lm_${layer} PROPERTIES OUTPUT_NAME "${ARG_OUTPUT}")
    endif()
endfunction()

# A shared library with the suffix .tx that the host loads by name.
function(lm_tx_name target name)
    set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX ".tx" OUTPUT_NAME "${name}"
                          LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tx")
endfunction()
