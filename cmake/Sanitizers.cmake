# Sanitizers apply to everything that is linked together.
if(TARNWICK_SANITIZE)
    add_compile_options(-fsanitize=${TARNWICK_SANITIZE} -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${TARNWICK_SANITIZE})
endif()
