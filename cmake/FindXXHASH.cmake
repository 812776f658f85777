# xxHash, which Debian's libxxhash-dev brings without a CMake file: the target XXHASH::XXHASH.
find_path(XXHASH_INCLUDE_DIR xxhash.h)
find_library(XXHASH_LIBRARY xxhash)
mark_as_advanced(XXHASH_INCLUDE_DIR XXHASH_LIBRARY)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(XXHASH REQUIRED_VARS XXHASH_LIBRARY XXHASH_INCLUDE_DIR)
if(XXHASH_FOUND AND NOT TARGET XXHASH::XXHASH)
    add_library(XXHASH::XXHASH UNKNOWN IMPORTED)
    set_target_properties(XXHASH::XXHASH PROPERTIES
        IMPORTED_LOCATION "${XXHASH_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${XXHASH_INCLUDE_DIR}")
endif()
