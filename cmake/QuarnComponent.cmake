# QuarnComponent.cmake - building component libraries and the interfaces they share
#
# Installed with the quarn package (find_package(quarn) includes it) and used
# by the source tree itself, so that a component library builds the same way
# in both places.
#
#   quarn_add_component(NAME SOURCES file... [LINK target...])
#     A loadable component library (a MODULE: hosts load it with dlopen and
#     never link it). It links quarn::quarn, exports only what is marked
#     (QUARN_COMPONENT_EXPORT: DllCreateInstance and DllDescribeLibrary), is
#     linked with -z defs so that a missing definition (a forgotten
#     QUARN_DEFINE_INTERFACE, say) fails the build and not the first host
#     that loads it, holds no process-unique symbols (-fno-gnu-unique) so that
#     it can be unloaded again, and finds the libraries installed beside it
#     ($ORIGIN).
#
#   quarn_add_interface_library(NAME SOURCES file... [INCLUDE dir])
#     A small shared library holding the statics of interfaces that a
#     component library introduces (one QUARN_DEFINE_INTERFACE each), so that
#     hosts can link it and use the interfaces by type (object->as<iX>()).
#     The component library links it too; INCLUDE becomes its public include
#     folder.
#
# Sanitizer builds (-fsanitize in CMAKE_CXX_FLAGS, or QUARN_SANITIZE) leave
# -z defs out: the sanitizer runtime is only resolved in the program.

function(_quarn_loadable target)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
                                             INSTALL_RPATH "$ORIGIN")
  target_compile_options(${target} PRIVATE -fno-gnu-unique)
  if(NOT QUARN_SANITIZE AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
  if(COMMAND quarn_warnings)  # inside the quarn source tree
    quarn_warnings(${target})
  endif()
endfunction()

function(quarn_add_component name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LINK")
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "quarn_add_component(${name}): no SOURCES given")
  endif()
  add_library(${name} MODULE ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE quarn::quarn ${ARG_LINK})
  _quarn_loadable(${name})
endfunction()

function(quarn_add_interface_library name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "INCLUDE" "SOURCES")
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "quarn_add_interface_library(${name}): no SOURCES given")
  endif()
  add_library(${name} SHARED ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC quarn::quarn)
  if(ARG_INCLUDE)
    target_include_directories(${name} PUBLIC ${ARG_INCLUDE})
  endif()
  _quarn_loadable(${name})
endfunction()
