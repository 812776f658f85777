# CMake does not run moc and uic again when only the list of sources has changed, and a new class
# with signals then lacks its meta-object. Forgetting the stamps at each configuration makes it look
# again; files whose content stays the same are not rebuilt.
file(GLOB_RECURSE autogen_stamps "${CMAKE_BINARY_DIR}/*_autogen/timestamp")
if(autogen_stamps)
    file(REMOVE ${autogen_stamps})
endif()
