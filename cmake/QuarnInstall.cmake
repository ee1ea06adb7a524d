# QuarnInstall.cmake - installs both libraries, their headers and the CMake package
include(CMakePackageConfigHelpers)

set(QUARN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/quarn)

install(TARGETS quarnCore quarn EXPORT quarnTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY quarnCore/include/ quarn/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} PATTERN "*.in" EXCLUDE)
install(FILES ${PROJECT_BINARY_DIR}/quarn/generated/quarn/Version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quarn)
install(EXPORT quarnTargets NAMESPACE quarn:: DESTINATION ${QUARN_CMAKE_DIR})

configure_package_config_file(cmake/quarnConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/quarnConfig.cmake
                              INSTALL_DESTINATION ${QUARN_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/quarnConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/quarnConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/quarnConfigVersion.cmake
              cmake/QuarnComponent.cmake
        DESTINATION ${QUARN_CMAKE_DIR})

# The command-line tool, as the imported target quarn::tool.
if(TARGET quarn_cli)
  install(TARGETS quarn_cli EXPORT quarnToolTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(EXPORT quarnToolTargets NAMESPACE quarn:: DESTINATION ${QUARN_CMAKE_DIR})
endif()
