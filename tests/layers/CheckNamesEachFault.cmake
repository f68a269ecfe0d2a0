# Builds a small tree with faults in FOLDER and looks for each of them in what CHECK says.
file(REMOVE_RECURSE "${FOLDER}")
file(WRITE "${FOLDER}/src/low/CMakeLists.txt" "vmk_layer_folder(vmk_base\n    Low.cpp Low.h)\n")
file(WRITE "${FOLDER}/src/low/Low.h" "")
file(WRITE "${FOLDER}/src/low/Low.cpp" "#include \"Low.h\"\n#include \"High.h\"\n#include \"../high/High.h\"\n")
file(WRITE "${FOLDER}/src/low/Forgotten.cpp" "")
file(WRITE "${FOLDER}/src/high/CMakeLists.txt" "vmk_layer_folder(vmk_ui High.h High.cpp)\n")
file(WRITE "${FOLDER}/src/high/High.h" "")
file(WRITE "${FOLDER}/src/high/High.cpp" "#include \"High.h\"\n#include \"Low.h\"\n")
file(WRITE "${FOLDER}/src/mixed/CMakeLists.txt" "vmk_layer_folder(vmk_ui A.h)\nvmk_layer_folder(vmk_core B.h)\n")
file(WRITE "${FOLDER}/src/mixed/A.h" "")
file(WRITE "${FOLDER}/src/mixed/B.h" "")

execute_process(COMMAND "${CHECK}" "${FOLDER}" OUTPUT_VARIABLE said RESULT_VARIABLE code)
set(expected
    "src/low/Low.cpp:2: vmk_base includes \"High.h\" of vmk_ui\n"
    "src/low/Low.cpp:3: include by the bare file name, not \"../high/High.h\"\n"
    "src/mixed: holds files of two layers\n"
    "src/low/Forgotten.cpp: in no CMakeLists.txt\n")
foreach(line IN LISTS expected)
    string(FIND "${said}" "${line}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "not reported: ${line}\nsaid:\n${said}")
    endif()
endforeach()
if(code EQUAL 0 OR said MATCHES "High.cpp")
    message(FATAL_ERROR "result ${code}, said:\n${said}")
endif()
