# Writes velactl's manual pages and its completion for shells below a folder, as they lie in /usr/share.
#   cmake "-DVELACTL=[EMULATOR;]PROGRAM" -DGZIP=... -DOUTPUT=... -P VelactlPages.cmake
file(REMOVE_RECURSE "${OUTPUT}")
file(MAKE_DIRECTORY "${OUTPUT}/man/man1" "${OUTPUT}/bash-completion/completions"
    "${OUTPUT}/zsh/vendor-completions")

function(velactl result)
    execute_process(COMMAND ${VELACTL} ${ARGN} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

# page(<name> [<verb>])
function(page name)
    velactl(text help --man ${ARGN})
    file(WRITE "${OUTPUT}/man/man1/${name}.1" "${text}")
    execute_process(COMMAND "${GZIP}" -9n "${OUTPUT}/man/man1/${name}.1" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

velactl(tables help --verbs)
string(REGEX MATCHALL "\n. `[a-z-]+" verbs "${tables}")
list(TRANSFORM verbs REPLACE ".*`" "")
page(velactl)
foreach(verb IN LISTS verbs)
    page(velactl-${verb} ${verb})
endforeach()

velactl(bash help --completion bash)
file(WRITE "${OUTPUT}/bash-completion/completions/velactl" "${bash}")
velactl(zsh help --completion zsh)
file(WRITE "${OUTPUT}/zsh/vendor-completions/_velactl" "${zsh}")
