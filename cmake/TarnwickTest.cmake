# tarnwick_test(NAME LIBRARY SOURCES...): one QtTest program under CTest, on the offscreen platform
# (no display is needed).
function(tarnwick_test name library)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE ${library} tarnwick_test_support Qt5::Test
                                          tarnwick_warnings)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
        TIMEOUT 300)
endfunction()
