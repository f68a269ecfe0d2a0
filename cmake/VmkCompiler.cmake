# Language level, warnings, sanitizers and the compiler cache: the same for every target of the tree.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

find_program(VMK_CCACHE ccache)
if(VMK_CCACHE)
    # ccache handles precompiled headers only if it does not compare time stamps and defines.
    set(VMK_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${VMK_CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${VMK_LAUNCHER})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${VMK_LAUNCHER})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 reports false overlapping and unbounded copies for additions of std::string, and a false release of memory
    # for a vector that grows.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict> $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow>
        $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds> $<$<COMPILE_LANGUAGE:CXX>:-Wno-free-nonheap-object>)
endif()
# The linker of LLVM is several times faster than the default one, and there are many test programs.
find_program(VMK_LLD ld.lld)
if(VMK_LLD)
    add_link_options(-fuse-ld=lld)
endif()
if(VMK_WERROR)
    add_compile_options(-Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
    # Qt asks for position-independent code. Without this GCC would not inline functions of the same source into each other.
    add_compile_options(-fno-semantic-interposition)
endif()
if(VMK_HARDEN)
    # The same protection as in Debian's packages. Sanitizers have checks of their own and replace the functions
    # that _FORTIFY_SOURCE replaces.
    if(VMK_SANITIZE)
        message(FATAL_ERROR "VMK_HARDEN and VMK_SANITIZE exclude each other")
    endif()
    include(CheckCXXCompilerFlag)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES C CXX)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    add_compile_options(-fstack-protector-strong)
    add_compile_definitions($<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
    # Only some processors have it.
    check_cxx_compiler_flag(-fcf-protection VMK_HAS_CF_PROTECTION)
    if(VMK_HAS_CF_PROTECTION)
        add_compile_options(-fcf-protection)
    endif()
endif()
if(VMK_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(VMK_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)
