# vmk_mirror(TARGET FROM TO): makes TARGET copy every file below the folder FROM to the folder TO, each when
# it has changed or is missing there. A file that is gone from FROM goes from TO too; whatever else stands
# in TO, such as what the program itself has written, is left alone.
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

# Deletes from TO what the last configuration copied there (the file LIST tells) and NAMES no longer holds.
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
