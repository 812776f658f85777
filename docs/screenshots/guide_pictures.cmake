# Makes the pictures of the guide in WORK and puts them, with few colours and well packed, below
# DOCS. Needs ImageMagick.
find_program(CONVERT convert)
if(NOT CONVERT)
    message(FATAL_ERROR "guide_pictures needs ImageMagick (convert)")
endif()

file(REMOVE_RECURSE "${WORK}")
file(GLOB earlier "${MEASUREMENT}/results/*")
file(REMOVE ${earlier})
foreach(language en ja)
    execute_process(COMMAND "${PROGRAM}" guide "${MEASUREMENT}" "${WORK}" ${language}
        RESULT_VARIABLE failed OUTPUT_QUIET ERROR_VARIABLE messages)
    if(NOT failed EQUAL 0)
        message(FATAL_ERROR "${failed}: ${messages}")
    endif()
endforeach()

file(GLOB pictures RELATIVE "${WORK}" "${WORK}/*.png")
foreach(picture IN LISTS pictures)
    set(target "${DOCS}/guide/images/${picture}")
    execute_process(COMMAND "${CONVERT}" "${WORK}/${picture}" +dither -colors 256 -strip
        -define png:compression-level=9 "PNG8:${target}" RESULT_VARIABLE failed)
    file(SIZE "${target}" size)
    if(NOT failed EQUAL 0 OR size GREATER 120000)
        message(FATAL_ERROR "${target}: cannot be written, or is too large (${size} bytes)")
    endif()
endforeach()
