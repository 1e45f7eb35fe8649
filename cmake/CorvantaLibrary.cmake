# corvanta_library(<name> SOURCES ... [PUBLIC deps...] [PRIVATE deps...])
#
# Adds the static library corvanta_<name> of the folder src/<name>. Its dependencies on other
# Corvanta libraries (corvanta_<other>) must be allowed by the table src/layers.txt, so that no
# library can come to use one above it; other dependencies (Qt modules, system libraries) are
# named as usual.
set(CORVANTA_LAYERS_FILE "${CMAKE_SOURCE_DIR}/src/layers.txt")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CORVANTA_LAYERS_FILE}")

function(corvanta_allowed_uses library result)
    file(STRINGS "${CORVANTA_LAYERS_FILE}" lines REGEX "^${library}:")
    list(LENGTH lines count)
    if(NOT count EQUAL 1)
        message(FATAL_ERROR "src/layers.txt has no line (or more than one) for the library '${library}'")
    endif()
    string(REGEX REPLACE "^${library}:[ \t]*" "" uses "${lines}")
    string(REGEX REPLACE "[ \t]+" ";" uses "${uses}")
    set(${result} "${uses}" PARENT_SCOPE)
endfunction()

function(corvanta_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    corvanta_allowed_uses(${name} allowed)
    foreach(dependency IN LISTS ARG_PUBLIC ARG_PRIVATE)
        if(dependency MATCHES "^corvanta_(.+)$")
            if(NOT CMAKE_MATCH_1 IN_LIST allowed)
                message(FATAL_ERROR
                    "corvanta_${name} may not use ${dependency}: src/layers.txt allows only '${allowed}'")
            endif()
        endif()
    endforeach()
    add_library(corvanta_${name} STATIC ${ARG_SOURCES})
    target_include_directories(corvanta_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(corvanta_${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()
