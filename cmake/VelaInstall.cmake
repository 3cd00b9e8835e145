# What an installation holds: the library with its headers, the package files by which CMake and
# pkg-config find it, and what the platform file has built for the library to be linked to: on a host
# the simulator. Each part is a component, of which VelaPackages makes a package: the libraries, what
# developers need of them, and the tool.

include(CMakePackageConfigHelpers)

# vela_go_along(PUBLIC|PRIVATE <library>...): appends to the global property VELA_GO_ALONG which targets
# of this build an exported one needs that is linked to the libraries. Private ones count when they are
# shared; every other one only hands on what it is linked to itself.
function(vela_go_along how)
    get_property(known GLOBAL PROPERTY VELA_GO_ALONG)
    foreach(target IN LISTS ARGN)
        string(REGEX REPLACE "^\\$<LINK_ONLY:([^>]*)>$" "\\1" target "${target}")
        if(NOT TARGET "${target}")
            continue()
        endif()
        get_target_property(aliased ${target} ALIASED_TARGET)
        if(aliased)
            set(target ${aliased})
        endif()
        get_target_property(type ${target} TYPE)
        get_target_property(imported ${target} IMPORTED)
        get_target_property(public ${target} INTERFACE_LINK_LIBRARIES)
        if(imported OR (how STREQUAL "PRIVATE" AND NOT type STREQUAL "SHARED_LIBRARY"))
            vela_go_along(${how} ${public})
        elseif(NOT target IN_LIST known)
            set_property(GLOBAL APPEND PROPERTY VELA_GO_ALONG ${target})
            vela_go_along(PUBLIC ${public})
            if(NOT type STREQUAL "INTERFACE_LIBRARY")
                get_target_property(private ${target} LINK_LIBRARIES)
                vela_go_along(PRIVATE ${private})
            endif()
        endif()
        get_property(known GLOBAL PROPERTY VELA_GO_ALONG)
    endforeach()
endfunction()

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
vela_go_along(PRIVATE platform::rlink platform::diag platform::log)
get_property(vela_platform GLOBAL PROPERTY VELA_GO_ALONG)
if(vela_platform)
    list(APPEND vela_platform platform_headers)
    list(REMOVE_DUPLICATES vela_platform)
    install(DIRECTORY platform/include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/velar/platform")
endif()
install(TARGETS vela ${vela_platform} EXPORT velarTargets
    LIBRARY COMPONENT libraries NAMELINK_COMPONENT development)
install(DIRECTORY include/vela DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
if(TARGET velasim)
    install(DIRECTORY sim/include/velasim DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    install(FILES README.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/libvelar-dev")
    install(DIRECTORY docs examples DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/libvelar-dev")
endif()
if(TARGET velactl)
    install(TARGETS velactl COMPONENT velactl)
endif()

# The tool writes its manual and what lets shells complete its lines, where it can be run.
find_program(GZIP_PROGRAM gzip)
if(TARGET velactl AND GZIP_PROGRAM AND NOT VELA_SANITIZE AND NOT VELA_FUZZ
        AND (NOT CMAKE_CROSSCOMPILING OR CMAKE_CROSSCOMPILING_EMULATOR))
    set(pages "${PROJECT_BINARY_DIR}/pages")
    add_custom_command(OUTPUT "${pages}.stamp"
        COMMAND ${CMAKE_COMMAND} "-DVELACTL=${CMAKE_CROSSCOMPILING_EMULATOR};$<TARGET_FILE:velactl>"
            "-DGZIP=${GZIP_PROGRAM}" "-DOUTPUT=${pages}"
            -P "${PROJECT_SOURCE_DIR}/cmake/VelactlPages.cmake"
        COMMAND ${CMAKE_COMMAND} -E touch "${pages}.stamp"
        DEPENDS velactl cmake/VelactlPages.cmake
        VERBATIM)
    add_custom_target(velactl_pages ALL DEPENDS "${pages}.stamp")
    install(DIRECTORY "${pages}/" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}" COMPONENT velactl)
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

set(pkgconfig_files velar)
if(TARGET velasim)
    # Apart, so that only who asks for the component needs GoogleTest.
    install(TARGETS vela_testing EXPORT velarTestingTargets)
    install(EXPORT velarTestingTargets NAMESPACE velar:: DESTINATION "${package_directory}")
    install(DIRECTORY sim/testing/include/velatesting DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    list(APPEND pkgconfig_files velasim velar-testing)
endif()
set(pkgconfig_directory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH vela_prefix "/${pkgconfig_directory}" "/")
foreach(name IN LISTS pkgconfig_files)
    configure_file(cmake/${name}.pc.in "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${pkgconfig_directory}")
endforeach()
