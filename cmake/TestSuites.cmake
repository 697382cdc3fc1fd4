# Read by ctest when it starts: the suites of the GoogleTest programs become its
# tests. A process for each suite, not for each case: starting one takes longer
# than most cases do, and what fails names its case all the same.

# add_suites(PROGRAM AREA FOLDER TIMEOUT): asks the program for its suites; each
# is the test "AREA/suite", run in FOLDER.
function(add_suites program area folder timeout)
    if(NOT EXISTS ${program})
        add_test(${area} ${program}) # not built: fails by its name
        return()
    endif()
    execute_process(COMMAND ${program} --gtest_list_tests
        WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "(^|\n)[^ \n]+[.]" suites "${listed}")
    foreach(suite IN LISTS suites)
        string(REGEX REPLACE "[\n.]" "" suite "${suite}")
        add_test("${area}/${suite}" ${program} "--gtest_filter=${suite}.*")
        set_tests_properties("${area}/${suite}" PROPERTIES WORKING_DIRECTORY ${folder}
            TIMEOUT ${timeout} ENVIRONMENT QT_QPA_PLATFORM=offscreen)
    endforeach()
endfunction()
