# The layers, each above those that it links:
#
#     vmk_platform                      without settings, books or windows
#     vmk_app    -> vmk_platform        shared variables, settings, files
#     vmk_core   -> vmk_app             books, rules, the tools' engines
#     vmk_view   -> vmk_platform        the display's view, dialogs
#     vmk_ui     -> vmk_core, vmk_view  the main window, the forms
#     vmk_start  -> vmk_ui              the start of the program
#
# A layer sees the headers of the layers that it links and no others: headers are included by their bare
# file name, and each folder is on the include path only of its own layer and of those above. A wrong-way
# include therefore does not build.

# vmk_layer_folder(LAYER files...): adds this folder's files to LAYER and puts the folder on its include path.
function(vmk_layer_folder layer)
    target_include_directories(${layer} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    set(files)
    foreach(file IN LISTS ARGN)
        list(APPEND files "${CMAKE_CURRENT_SOURCE_DIR}/${file}")
    endforeach()
    target_sources(${layer} PRIVATE ${files})
endfunction()
