# Warnings for our own targets; system and generated headers stay out of it.
add_library(tarnwick_warnings INTERFACE)
target_compile_options(tarnwick_warnings INTERFACE
    -Wall -Wextra -Wshadow -Wconversion
    # Fused multiply-add would give other last bits on machines that have it:
    # every path of the numerics has to yield the same numbers everywhere.
    -ffp-contract=off)
if(TARNWICK_WERROR)
    target_compile_options(tarnwick_warnings INTERFACE -Werror)
endif()
