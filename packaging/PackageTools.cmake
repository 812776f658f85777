# Read by cpack before it begins: without dpkg-shlibdeps it would make packages that depend on nothing.
foreach(tool dpkg-shlibdeps file strip)
    find_program(TOOL_${tool} ${tool})
    if(NOT TOOL_${tool})
        message(FATAL_ERROR "${tool} is missing: apt-get install dpkg-dev file binutils")
    endif()
endforeach()
