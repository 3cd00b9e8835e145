# The platform of a device: its vendor's messaging client and diagnostic log, and the Android log.
#
# VELA_RLINK_LIBRARY and VELA_DIAG_LIBRARY name the vendor's libraries (files, or names for the
# linker). What is left empty stays unresolved in libvelar.so until its process loads it.

set(VELA_RLINK_LIBRARY "" CACHE STRING "Messaging client and wireless data service of the vendor")
set(VELA_DIAG_LIBRARY "" CACHE STRING "Diagnostic log of the vendor")

foreach(part IN ITEMS rlink diag)
    string(TOUPPER "VELA_${part}_LIBRARY" variable)
    add_library(platform::${part} INTERFACE IMPORTED)
    if(${variable})
        target_link_libraries(platform::${part} INTERFACE "${${variable}}")
    else()
        target_link_options(platform::${part} INTERFACE LINKER:-z,undefs)
    endif()
endforeach()

if(ANDROID)
    add_library(platform::log INTERFACE IMPORTED)
    target_link_libraries(platform::log INTERFACE log)
else()
    include(DebianLiblog)
endif()
