# Asks TESTS for its suites and writes to OUT what CTest reads: one test for each suite. A process for
# each single test would take longer to start than most of them run.
execute_process(COMMAND ${TESTS} --gtest_list_tests OUTPUT_VARIABLE list ERROR_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n[A-Za-z0-9_/]+[.]" suites "\n${list}")
set(tests)
foreach(suite ${suites})
    string(REGEX REPLACE "[\n.]" "" suite "${suite}")
    string(APPEND tests "add_test(${suite} \"${TESTS}\" \"--gtest_filter=${suite}.*\")\n"
        "set_tests_properties(${suite} PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 300)\n")
endforeach()
file(WRITE ${OUT} "${tests}")
