# SPDX-License-Identifier: MIT

# What libraries may know of each other, checked twice for each:
#
# - It is linked by itself and whole, with the libraries that it names and nothing else. A call of
#   what is not in them is an undefined symbol, and the build fails.
# - The files that it is made of may include its own headers and those of the libraries before it. A
#   use that needs no symbol, of a structure or a constant, would be found by no linker.

file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/whole.cpp "int main()\n{\n}\n")

# kavlor_boundaries(<library>...): each may know itself and those before it.
function(kavlor_boundaries)
    set(headers "")
    foreach(library IN LISTS ARGN)
        add_executable(${library}_whole ${CMAKE_CURRENT_BINARY_DIR}/whole.cpp)
        set_target_properties(${library}_whole PROPERTIES
            RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} AUTOMOC OFF AUTOUIC OFF)
        target_link_libraries(${library}_whole PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,${library}>)

        set(files "")
        get_target_property(sources ${library} SOURCES)
        get_target_property(folder ${library} SOURCE_DIR)
        foreach(source IN LISTS sources)
            get_filename_component(name ${source} NAME_WE)
            if(source MATCHES "\\.ui$")
                list(APPEND headers ui_${name}.h)
                continue()
            elseif(source MATCHES "\\.h$")
                list(APPEND headers ${name}.h)
            endif()
            get_filename_component(file ${source} ABSOLUTE BASE_DIR ${folder})
            list(APPEND files ${file})
        endforeach()
        list(JOIN headers "\n" list)
        file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${library}.headers "${list}\n")
        add_test(NAME boundary_${library}
            COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/includes-only
                ${CMAKE_CURRENT_BINARY_DIR}/${library}.headers ${files})
        set_tests_properties(boundary_${library} PROPERTIES LABELS unit)
    endforeach()
endfunction()

kavlor_boundaries(kavlor_service kavlor_models kavlor_screens)
kavlor_boundaries(
    kavlor_localservice_records kavlor_localservice_trade kavlor_localservice_http)

# The check itself: it names who offends.
add_test(NAME boundary_offender_is_named
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/includes-only
        ${CMAKE_CURRENT_BINARY_DIR}/kavlor_service.headers
        ${CMAKE_SOURCE_DIR}/kavlor/kavlorcategorymodel.cpp)
set_tests_properties(boundary_offender_is_named PROPERTIES LABELS unit
    PASS_REGULAR_EXPRESSION "kavlorcategorymodel.cpp includes kavlorcategorymodel.h")
