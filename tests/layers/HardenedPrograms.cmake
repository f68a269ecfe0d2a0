# Each of PROGRAMS is position-independent, has read-only relocations that are bound at start, no executable stack,
# and calls the checks of the stack protector and of _FORTIFY_SOURCE.
foreach(program IN LISTS PROGRAMS)
    execute_process(COMMAND readelf --wide --file-header --program-headers --dynamic --dyn-syms ${program}
        OUTPUT_VARIABLE elf COMMAND_ERROR_IS_FATAL ANY)
    foreach(wanted
            "Type: +DYN" "FLAGS_1[^\n]* PIE" "GNU_RELRO" "FLAGS_1[^\n]* NOW" "GNU_STACK[^\n]* RW " "__stack_chk_fail" "_chk@GLIBC")
        if(NOT elf MATCHES "${wanted}")
            message(SEND_ERROR "${program}: readelf shows no \"${wanted}\"")
        endif()
    endforeach()
endforeach()
