# header_check: every public header is compiled by itself, so that users may include them in any order.
#
# One source per header, which includes that header and nothing else (twice, for the guard). The target links no
# precompiled header: that would hide missing includes.

include(ZrHeaders)

function(zr_add_header_check)
    zr_public_headers(headers)
    set(sources)
    foreach(header IN LISTS headers)
        string(REGEX REPLACE "[/.]" "_" name ${header})
        set(source ${PROJECT_BINARY_DIR}/header_check/${name}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n" @ONLY)
        list(APPEND sources ${source})
    endforeach()
    add_library(header_check OBJECT ${sources})
    target_link_libraries(header_check PRIVATE zr_private_options ZrKit)
    # Only whether they compile matters.
    target_compile_options(header_check PRIVATE -O0 -g0)
endfunction()

zr_add_header_check()
