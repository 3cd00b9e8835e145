# Debian packages of what is installed, one for each component: cpack --config CPackConfig.cmake.

set(libraries "libvelar${PROJECT_VERSION_MAJOR}")
set(debian "${PROJECT_BINARY_DIR}/debian")
set(same_version "${libraries} (= ${PROJECT_VERSION})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT "The libvelar Authors <libvelar@example.org>"
    CACHE STRING "Who packages are from: NAME <ADDRESS>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL libraries development velactl)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/InstalledRunPaths.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME ${libraries})
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_DESCRIPTION "data profiles of a cellular modem: libraries
An in-memory image of the data (APN) profiles that a cellular modem keeps, the
one way to change them, and the policies that find, repair or create the right
profile for a purpose.

On this system the modem is a simulated one.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvelar-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libgmock-dev, libgtest-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "data profiles of a cellular modem: development files
What programs are compiled with that use libvelar, its modem simulator, or the
GoogleTest fixture that tests them against it: headers, files for CMake and
pkg-config, documentation and examples.")

set(CPACK_DEBIAN_VELACTL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_VELACTL_PACKAGE_NAME velactl)
set(CPACK_DEBIAN_VELACTL_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_VELACTL_DESCRIPTION "data profiles of a cellular modem: command line tool
Shows and changes the profiles of a simulated modem, reads operator files in
the format of Android's apns-conf.xml, explains what each policy decides, and
plays scenarios that check themselves.")

# With whom programs that are linked to the libraries shall be installed, and the loader's news of them.
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${debian}/shlibs;${debian}/triggers")
file(CONFIGURE OUTPUT "${debian}/triggers" CONTENT "activate-noawait ldconfig\n")
file(CONFIGURE OUTPUT "${debian}/shlibs" CONTENT
    "libvelar ${PROJECT_VERSION_MAJOR} ${same_version}\nlibvelasim ${PROJECT_VERSION_MAJOR} ${same_version}\n")

# What Debian wants of each package: its licence, its changelog, and why a run path stays.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian/changelog.in "${debian}/changelog" @ONLY)
execute_process(COMMAND "${GZIP_PROGRAM}" -9nf "${debian}/changelog" COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" upper)
    install(FILES cmake/debian/copyright "${debian}/changelog.gz" COMPONENT ${component}
        DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
endforeach()
configure_file(cmake/debian/overrides.in "${debian}/overrides" @ONLY)
install(FILES "${debian}/overrides" COMPONENT libraries
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides" RENAME ${libraries})

include(CPack)
