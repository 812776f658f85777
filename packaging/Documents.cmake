# Documents are installed as Debian's policy asks: compressed, without the time of it.
find_program(GZIP gzip REQUIRED)
mark_as_advanced(GZIP)

# tarnwick_install_compressed(COMPONENT FILE FOLDER [NAME]): FOLDER/NAME.gz, without NAME under its own.
function(tarnwick_install_compressed component file folder)
    get_filename_component(name "${file}" NAME)
    if(ARGC GREATER 3)
        set(name "${ARGV3}")
    endif()
    set(compressed "${CMAKE_CURRENT_BINARY_DIR}/compressed/${component}/${name}.gz")
    get_filename_component(made_in "${compressed}" DIRECTORY)
    file(MAKE_DIRECTORY "${made_in}")
    add_custom_command(OUTPUT "${compressed}"
        COMMAND sh -c "\"$1\" -9nc < \"$2\" > \"$3\"" compress "${GZIP}" "${file}" "${compressed}"
        DEPENDS "${file}" VERBATIM)
    add_custom_target(${component}_${name}_gz ALL DEPENDS "${compressed}")
    install(FILES "${compressed}" DESTINATION ${folder} COMPONENT ${component})
endfunction()

# tarnwick_install_program_documents(COMPONENT PROGRAM): its page of the manual, in which @VERSION@ is
# filled in, and its completion for bash.
function(tarnwick_install_program_documents component program)
    set(VERSION "${PROJECT_VERSION}")
    configure_file(${program}.1 ${program}.1 @ONLY)
    tarnwick_install_compressed(${component} "${CMAKE_CURRENT_BINARY_DIR}/${program}.1"
                                ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES completion/tarnwick RENAME ${program} COMPONENT ${component}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endfunction()
