# The platform of a host: the modem simulator, and Debian's build of the Android log.

include(DebianLiblog)

if(EXISTS "${PROJECT_SOURCE_DIR}/sim/CMakeLists.txt")
    add_subdirectory("${PROJECT_SOURCE_DIR}/sim" "${PROJECT_BINARY_DIR}/sim")
    add_library(platform::rlink ALIAS velasim)
    add_library(platform::diag ALIAS velasim)
else()
    add_library(platform::rlink INTERFACE IMPORTED)
    add_library(platform::diag INTERFACE IMPORTED)
endif()
