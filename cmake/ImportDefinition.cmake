# Writes the definition file for the import library: each exported name as the compiler decorates it, but for those that
# only the system calls (PRIVATE).
file(STRINGS ${DEF} names REGEX "^    [A-Za-z]+$")
execute_process(COMMAND ${NM} --defined-only --format=just-symbols ${ARCHIVE} OUTPUT_VARIABLE symbols
    COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" symbols "${symbols}")
set(lines "LIBRARY Lantry.ocx\nEXPORTS\n")
foreach(name IN LISTS names)
    string(STRIP "${name}" name)
    set(decorated ${name})
    foreach(symbol IN LISTS symbols)
        if(symbol MATCHES "^_${name}(@[0-9]+)$")
            set(decorated "${name}${CMAKE_MATCH_1}")
            break()
        endif()
    endforeach()
    string(APPEND lines "    ${decorated}\n")
endforeach()
file(WRITE ${OUTPUT} "${lines}")
