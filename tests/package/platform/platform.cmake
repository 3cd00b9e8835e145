# A vendor's platform that is built with the library: a shim on a library of its own, and a log.
add_library(vendor_modem SHARED "${CMAKE_CURRENT_LIST_DIR}/modem.c")
add_library(vendor_log SHARED "${CMAKE_CURRENT_LIST_DIR}/log.c")
add_library(vendor_shim SHARED "${CMAKE_CURRENT_LIST_DIR}/shim.c")
set_target_properties(vendor_modem vendor_log vendor_shim PROPERTIES C_VISIBILITY_PRESET default)
target_link_libraries(vendor_shim PUBLIC platform::headers PRIVATE vendor_modem)

find_path(vendor_log_headers android/log.h PATH_SUFFIXES android REQUIRED)
target_include_directories(vendor_log SYSTEM PUBLIC $<BUILD_INTERFACE:${vendor_log_headers}>)

add_library(platform::rlink ALIAS vendor_shim)
add_library(platform::diag ALIAS vendor_shim)
add_library(platform::log ALIAS vendor_log)
