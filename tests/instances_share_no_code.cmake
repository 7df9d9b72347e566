# Fails when an object of an instance defines code that the linker may merge with another's: an
# inline function outside the instance's own namespace would then run with instructions that the
# processor may not have. Arguments: NM, NAMESPACE, OBJECTS (a list).
execute_process(COMMAND ${NM} --defined-only ${OBJECTS}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[0-9a-f]+ [WV] [^\n]+" merged "${symbols}")
if(NOT symbols MATCHES "${NAMESPACE}")
    message(FATAL_ERROR "no symbol of namespace ${NAMESPACE} in ${OBJECTS}")
endif()
string(LENGTH ${NAMESPACE} length)
list(FILTER merged EXCLUDE REGEX "3zel${length}${NAMESPACE}")
if(merged)
    list(JOIN merged "\n" merged)
    message(FATAL_ERROR "code of ${NAMESPACE} that could stand in for another instance's:\n${merged}")
endif()
