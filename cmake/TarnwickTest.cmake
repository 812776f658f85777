# Accesses inside of libraries that are not built with the sanitizer are not looked at; what it is
# told besides is in the file.
set(TSAN_ENVIRONMENT
    "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/tsan.supp:ignore_noninstrumented_modules=1:history_size=4")

# tarnwick_test(NAME LABEL SOURCE LIBRARIES...): one QtTest program under CTest, on the offscreen
# platform (no display is needed). A case that hangs ends after four minutes.
function(tarnwick_test name label source)
    add_executable(${name} "${source}")
    target_link_libraries(${name} PRIVATE ${ARGN} tarnwick_test_support Qt5::Test
                                          tarnwick_warnings)
    # A test acts for what follows; what an action says is judged where it matters.
    target_compile_options(${name} PRIVATE -Wno-unused-result)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        LABELS ${label}
        ENVIRONMENT "${TSAN_ENVIRONMENT};QT_QPA_PLATFORM=offscreen;QTEST_FUNCTION_TIMEOUT=240000;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
        TIMEOUT 600)
endfunction()
