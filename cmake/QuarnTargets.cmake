# QuarnTargets.cmake - settings shared by every target the project builds

# Warning flags stay private to our own targets.
function(quarn_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(QUARN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# A shared library of the project: versioned, hidden visibility, and linked
# with -z defs (outside sanitizer builds) so that a missing symbol is a link
# error here rather than a load error at a client.
function(quarn_library target)
  quarn_warnings(${target})
  # Calls inside the library bind locally instead of going through the PLT.
  target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  # Inline variables (ours and the standard library's) would otherwise become
  # process-unique symbols, and the loader never unloads a library that holds
  # one: both libraries must be able to leave a process that loaded them with dlopen.
  # (GCC's option; clang makes no such symbols and does not know it.)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-gnu-unique)
    # Thread-locals (the pools' per-thread caches, the class-name memo) are
    # reached through TLS descriptors: a load and an indirect call that
    # returns at once, instead of a call of __tls_get_addr on every pooled
    # take and return. Sanitizer runtimes watch __tls_get_addr, so their
    # builds keep the default.
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND NOT QUARN_SANITIZE AND NOT QUARN_TSAN)
      target_compile_options(${target} PRIVATE -mtls-dialect=gnu2)
    endif()
  endif()
  # Installed, each library finds its siblings (libquarn -> libquarnCore) beside itself.
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                             INSTALL_RPATH "$ORIGIN")
  if(NOT QUARN_SANITIZE AND NOT QUARN_TSAN AND NOT QUARN_BUILD_FUZZERS)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
endfunction()
