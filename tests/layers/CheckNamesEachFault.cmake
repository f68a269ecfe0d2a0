# Creates a small tree with faults in FOLDER and searches the output of CHECK for each of them.
file(REMOVE_RECURSE "${FOLDER}")
file(WRITE "${FOLDER}/src/low/CMakeLists.txt" "vmk_layer_folder(vmk_platform\n    Low.cpp Low.h)\n")
file(WRITE "${FOLDER}/src/low/Low.h" "")
file(WRITE "${FOLDER}/src/low/Low.cpp" "#include \"Low.h\"\n#include \"High.h\"\n#include \"../high/High.h\"\n")
file(WRITE "${FOLDER}/src/low/Forgotten.cpp" "")
file(WRITE "${FOLDER}/src/high/CMakeLists.txt" "vmk_layer_folder(vmk_ui High.h High.cpp)\n")
file(WRITE "${FOLDER}/src/high/High.h" "")
file(WRITE "${FOLDER}/src/high/High.cpp" "#include \"High.h\"\n#include \"Low.h\"\n")
file(WRITE "${FOLDER}/src/mixed/CMakeLists.txt" "vmk_layer_folder(vmk_ui A.h)\nvmk_layer_folder(vmk_core B.h)\n")
file(WRITE "${FOLDER}/src/beside/CMakeLists.txt" "vmk_layer_folder(vmk_view Beside.h)\n")
file(WRITE "${FOLDER}/src/beside/Beside.h" "#include \"A.h\"\n#include \"Middle.h\"\n#include \"Low.h\"\n")
file(WRITE "${FOLDER}/src/middle/CMakeLists.txt" "vmk_layer_folder(vmk_core Middle.h)\n")
file(WRITE "${FOLDER}/src/middle/Middle.h" "#include \"Low.h\"\n#include \"Beside.h\"\n")
file(WRITE "${FOLDER}/src/odd/CMakeLists.txt" "vmk_layer_folder(vmk_odd)\n")
file(WRITE "${FOLDER}/src/mixed/A.h" "")
file(WRITE "${FOLDER}/src/mixed/B.h" "")

execute_process(COMMAND "${CHECK}" "${FOLDER}" OUTPUT_VARIABLE said RESULT_VARIABLE code)
set(expected
    "src/low/Low.cpp:2: vmk_platform includes \"High.h\" of vmk_ui\n"
    "src/low/Low.cpp:3: include by the bare file name, not \"../high/High.h\"\n"
    "src/beside/Beside.h:2: vmk_view includes \"Middle.h\" of vmk_core\n"
    "src/middle/Middle.h:2: vmk_core includes \"Beside.h\" of vmk_view\n"
    "src/odd: vmk_odd is no layer\n"
    "src/mixed: holds files of two layers\n"
    "src/low/Forgotten.cpp: in no CMakeLists.txt\n")
foreach(line IN LISTS expected)
    string(FIND "${said}" "${line}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "not reported: ${line}\nsaid:\n${said}")
    endif()
endforeach()
if(code EQUAL 0 OR said MATCHES "High.cpp" OR said MATCHES "Beside.h:3" OR said MATCHES "Middle.h:1")
    message(FATAL_ERROR "result ${code}, said:\n${said}")
endif()
