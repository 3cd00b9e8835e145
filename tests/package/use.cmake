# Installs the package into a folder of its own, and builds and tests its consumer there.
#   cmake -DBUILD=... -DSOURCE=... -DCTEST=... -DOPTIONS=... -P use.cmake
# With -DPROJECT=... -DPLATFORM=... the package is built first, for another platform; with -DPREFIX=...
# it is installed there already.
string(RANDOM LENGTH 12 name)
set(folder "${BUILD}/package-test-${name}")
file(MAKE_DIRECTORY "${folder}")

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        file(REMOVE_RECURSE "${folder}")
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${result}: ${command}")
    endif()
endfunction()

if(PLATFORM)
    run(${CMAKE_COMMAND} -S "${PROJECT}" -B "${folder}/build" -G Ninja ${OPTIONS}
        "-DVELA_PLATFORM=${PLATFORM}" -DVELA_TOOLS=OFF -DBUILD_TESTING=OFF)
    run(${CMAKE_COMMAND} --build "${folder}/build")
    set(BUILD "${folder}/build")
endif()
if(NOT PREFIX)
    set(PREFIX "${folder}/prefix")
    # Twice, because an installation may be renewed.
    run(${CMAKE_COMMAND} --install "${BUILD}" --prefix "${PREFIX}")
    run(${CMAKE_COMMAND} --install "${BUILD}" --prefix "${PREFIX}")
endif()
run(${CTEST} --build-and-test "${SOURCE}" "${folder}/consumer"
    --build-generator Ninja
    --build-options "-DCMAKE_PREFIX_PATH=${PREFIX}" ${OPTIONS}
    --test-command ${CTEST} --output-on-failure --no-tests=error)
file(REMOVE_RECURSE "${folder}")
