# cmake -D PROGRAM=... -D LIST=... -D TIMEOUT=... -D COST=... -D LABELS=... -P DiscoverSuites.cmake
# Writes the file LIST for ctest to include, with an entry for each suite of the test program. Large suites run
# first, so that none is left running alone at the end.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${PROGRAM} --gtest_list_tests
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY TIMEOUT 120)
string(REPLACE ";" "," listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")

set(content "")
set(suite "")
set(count 0)
function(add_suite)
    if(suite)
        math(EXPR cost "${COST} * 1000 + ${count}")
        set(content "${content}add_test([==[${suite}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}.*]==])
set_tests_properties([==[${suite}]==] PROPERTIES TIMEOUT ${TIMEOUT} COST ${cost} LABELS [==[${LABELS}]==])\n"
            PARENT_SCOPE)
    endif()
endfunction()
foreach(line IN LISTS lines)
    if(line MATCHES "^([A-Za-z0-9_/]+)\\.")
        set(found ${CMAKE_MATCH_1})
        add_suite()
        set(suite ${found})
        set(count 0)
    elseif(line MATCHES "^  ")
        math(EXPR count "${count} + 1")
    endif()
endforeach()
add_suite()
file(WRITE ${LIST} "${content}")
