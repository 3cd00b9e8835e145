# Takes run paths out of what is about to be packaged, which goes where the loader looks; CPack runs
# this. Libraries keep those of other packages, as the Android log's.
file(GLOB_RECURSE files "${CPACK_TEMPORARY_DIRECTORY}/*/usr/bin/*"
    "${CPACK_TEMPORARY_DIRECTORY}/*.so.*")
foreach(file IN LISTS files)
    if(IS_SYMLINK "${file}")
        continue()
    endif()
    set(path "")
    if(file MATCHES "[.]so")
        file(READ_ELF "${file}" RUNPATH path)
        list(FILTER path EXCLUDE REGEX "^[$]ORIGIN")
        list(JOIN path ":" path)
    endif()
    file(RPATH_SET FILE "${file}" NEW_RPATH "${path}")
endforeach()
