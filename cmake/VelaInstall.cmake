# What an installation holds: the library with its headers, and the package files by which CMake and
# pkg-config find it. On a host also the simulator, which the library is linked to there.

include(CMakePackageConfigHelpers)

install(TARGETS vela EXPORT velarTargets)
install(DIRECTORY include/vela DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

if(TARGET velasim)
    install(TARGETS velasim platform_headers EXPORT velarTargets)
    install(DIRECTORY platform/include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/velar/platform")
    install(DIRECTORY sim/include/velasim DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
endif()
if(TARGET velactl)
    install(TARGETS velactl)
endif()

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/velar")
install(EXPORT velarTargets NAMESPACE velar:: DESTINATION "${package_directory}")
configure_package_config_file(cmake/velarConfig.cmake.in "${PROJECT_BINARY_DIR}/velarConfig.cmake"
    INSTALL_DESTINATION "${package_directory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/velarConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/velarConfig.cmake" "${PROJECT_BINARY_DIR}/velarConfigVersion.cmake"
    DESTINATION "${package_directory}")

configure_file(cmake/velar.pc.in "${PROJECT_BINARY_DIR}/velar.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/velar.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
