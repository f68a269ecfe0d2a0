# The layers, lowest first: vmk_base, vmk_core, vmk_ui, and the programs.
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
