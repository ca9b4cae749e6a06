# Asks TESTS for its suites and writes to OUT what CTest reads: one test for each suite. A process for
# each single test would take longer to start than most of them run.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${TESTS} --gtest_list_tests OUTPUT_VARIABLE list ERROR_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n[A-Za-z0-9_/]+[.]" suites "\n${list}")
# begun first, so that no processor is left waiting for them at the end
set(long SixtyDaysStory CurlMailTest FilmOfFfmpeg MainLoopTest StatusFileTest PowerCut FollowSun)
set(tests)
foreach(suite ${suites})
    string(REGEX REPLACE "[\n.]" "" suite "${suite}")
    string(APPEND tests "add_test(${suite} \"${TESTS}\" \"--gtest_filter=${suite}.*\")\n"
        "set_tests_properties(${suite} PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 300)\n")
    if(suite IN_LIST long)
        string(APPEND tests "set_tests_properties(${suite} PROPERTIES COST 10)\n")
    endif()
endforeach()
file(WRITE ${OUT} "${tests}")
