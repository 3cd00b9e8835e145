# platform::log from Debian's android-liblog-dev, which keeps header and library in folders named
# android/ beside the usual ones. A platform file may include this.

find_path(VELA_LIBLOG_INCLUDE_DIR android/log.h PATH_SUFFIXES android)
find_library(VELA_LIBLOG_LIBRARY log PATH_SUFFIXES android)
mark_as_advanced(VELA_LIBLOG_INCLUDE_DIR VELA_LIBLOG_LIBRARY)

if(NOT VELA_LIBLOG_INCLUDE_DIR OR NOT VELA_LIBLOG_LIBRARY)
    message(FATAL_ERROR "The Android log is missing: install the package android-liblog-dev")
endif()

add_library(platform::log SHARED IMPORTED GLOBAL)
set_target_properties(platform::log PROPERTIES
    IMPORTED_LOCATION "${VELA_LIBLOG_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${VELA_LIBLOG_INCLUDE_DIR}")
