# The platform of a host: the modem simulator, and Debian's build of the Android log.

include(DebianLiblog)

add_subdirectory("${PROJECT_SOURCE_DIR}/sim" "${PROJECT_BINARY_DIR}/sim")
add_library(platform::rlink ALIAS velasim)
add_library(platform::diag ALIAS velasim)
