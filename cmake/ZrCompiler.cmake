# Compiler settings of this tree: ccache, warnings, floating point, sanitizers, coverage.
# zr_private_options carries them; every target of the tree links it privately, users never see it.

find_program(ZRUTIL_CCACHE ccache)
if(ZRUTIL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # A precompiled header defeats the cache without these relaxations.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
        ${ZRUTIL_CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-fpch-preprocess)
    endif()
endif()

add_library(zr_private_options INTERFACE)
target_compile_options(zr_private_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    -Wdate-time -Wundef
    $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override>
    $<$<CXX_COMPILER_ID:Clang>:-Winconsistent-missing-override>
    # Equal points must give a bearing of exactly 0: no fused multiply-add may be formed.
    -ffp-contract=off)
target_compile_definitions(zr_private_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_FOREACH QT_NO_KEYWORDS)
if(ZRUTIL_WERROR)
    target_compile_options(zr_private_options INTERFACE -Werror)
endif()

if(ZRUTIL_SANITIZE)
    add_compile_options(-fsanitize=${ZRUTIL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZRUTIL_SANITIZE})
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
if(ZRUTIL_COVERAGE)
    add_compile_options(--coverage -O0)
    add_link_options(--coverage)
endif()
if(ZRUTIL_BUILD_FUZZERS)
    # The fuzzer steers by the coverage of the libraries, not only of its own few lines.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
