# The rooms of the tools: one concern, one folder, one small library.

# vela_room(<name> <source>... [USES <room>...] [LIBS <library>...])
#
# The static library velactl_<name>, made of the folder's sources. USES names every room whose
# headers these may include ("<room>/<Header>.h"); anything else stops the configuration.
function(vela_room name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "USES;LIBS")
    set(folder "${PROJECT_SOURCE_DIR}/tools/${name}")
    list(JOIN arg_USES "|" allowed)
    file(GLOB files CONFIGURE_DEPENDS "${folder}/*.h" "${folder}/*.cpp")
    foreach(file IN LISTS files)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
        file(STRINGS "${file}" includes REGEX "^#include \"[a-z]+/")
        list(FILTER includes EXCLUDE REGEX "\"(${name}|${allowed})/")
        if(includes)
            message(FATAL_ERROR
                "${file}: the room ${name} may use ${arg_USES}, as its build file says: ${includes}")
        endif()
    endforeach()
    list(TRANSFORM arg_UNPARSED_ARGUMENTS PREPEND "${folder}/")
    add_library(velactl_${name} STATIC ${arg_UNPARSED_ARGUMENTS})
    target_include_directories(velactl_${name} PUBLIC "${PROJECT_SOURCE_DIR}/tools")
    list(TRANSFORM arg_USES PREPEND velactl_)
    target_link_libraries(velactl_${name} PUBLIC ${arg_USES} ${arg_LIBS} PRIVATE vela_warnings)
    # The heavy headers, read once in each room.
    target_precompile_headers(velactl_${name} PRIVATE
        <nlohmann/json.hpp> <functional> <string>)
    # So that a compiler cache may keep them: clang would refuse one whose system headers have only
    # become younger.
    target_compile_options(velactl_${name} PRIVATE
        $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
        "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endfunction()
