# vmk_mirror(TARGET FROM TO): TARGET copies every file below the folder FROM to the folder TO if it has changed or
# is missing there. A file that was removed from FROM is removed from TO; other files in TO, for example those
# written by the program, are not touched.
function(vmk_mirror target from to)
    file(GLOB_RECURSE names CONFIGURE_DEPENDS LIST_DIRECTORIES false RELATIVE "${from}" "${from}/*")
    vmk_remove_stale_copies("${CMAKE_CURRENT_BINARY_DIR}/${target}.files" "${to}" "${names}")

    set(copies)
    foreach(name IN LISTS names)
        add_custom_command(OUTPUT "${to}/${name}"
            COMMAND ${CMAKE_COMMAND} -E copy "${from}/${name}" "${to}/${name}"
            DEPENDS "${from}/${name}"
            VERBATIM)
        list(APPEND copies "${to}/${name}")
    endforeach()
    add_custom_target(${target} ALL DEPENDS ${copies})
endfunction()

# Deletes from TO the files that the last configuration copied (listed in the file LIST) and that are not in NAMES.
function(vmk_remove_stale_copies list to names)
    if(EXISTS "${list}")
        file(STRINGS "${list}" old)
        foreach(name IN LISTS old)
            if(NOT name IN_LIST names)
                file(REMOVE "${to}/${name}")
            endif()
        endforeach()
    endif()
    list(JOIN names "\n" text)
    file(WRITE "${list}" "${text}")
endfunction()
