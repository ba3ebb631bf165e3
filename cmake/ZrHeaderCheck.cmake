# header_check: every public header is compiled by itself, so that users may include them in any order.
#
# One source per header, which includes that header and nothing else (twice, for the guard). A precompiled header
# would hide missing includes; so a source has only that of a Qt header which its own header includes anyway, directly
# or through others of this tree. That halves the time.

include(ZrHeaders)

# Those of Qt that include <QObject>.
set(zr_object_headers
    QCoreApplication QFile QFont QImage QJsonObject QObject QOpenGLContext QPainter QPainterPath QPointer QThread
    QTimer QVariant QWidget)

# zr_qt_includes(HEADER OUT): the Qt headers that HEADER includes, directly or through others of this tree.
function(zr_qt_includes header out)
    get_property(is_known GLOBAL PROPERTY zr_qt_includes_${header} SET)
    if(NOT is_known)
        set(path ${PROJECT_SOURCE_DIR}/${header})
        set(found)
        if(EXISTS ${path})
            file(STRINGS ${path} lines REGEX "^#include ")
            foreach(line IN LISTS lines)
                if(line MATCHES "<(Q[A-Za-z0-9]+)>")
                    list(APPEND found ${CMAKE_MATCH_1})
                elseif(line MATCHES "\"(.+)\"")
                    zr_qt_includes(${CMAKE_MATCH_1} further)
                    list(APPEND found ${further})
                endif()
            endforeach()
            list(REMOVE_DUPLICATES found)
        endif()
        set_property(GLOBAL PROPERTY zr_qt_includes_${header} "${found}")
    endif()
    get_property(found GLOBAL PROPERTY zr_qt_includes_${header})
    set(${out} ${found} PARENT_SCOPE)
endfunction()

# zr_add_header_group(NAME [PRECOMPILED header] SOURCES source...)
function(zr_add_header_group name)
    cmake_parse_arguments(arg "" "PRECOMPILED" "SOURCES" ${ARGN})
    add_library(${name} OBJECT ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE zr_private_options ZrKit)
    # Only whether they compile matters.
    target_compile_options(${name} PRIVATE -O0 -g0)
    if(arg_PRECOMPILED)
        target_precompile_headers(${name} PRIVATE ${arg_PRECOMPILED})
    endif()
    add_dependencies(header_check ${name})
endfunction()

function(zr_add_header_check)
    zr_public_headers(headers)
    set(plain)
    set(of_string)
    set(of_object)
    foreach(header IN LISTS headers)
        string(REGEX REPLACE "[/.]" "_" name ${header})
        set(source ${PROJECT_BINARY_DIR}/header_check/${name}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n" @ONLY)
        zr_qt_includes(${header} includes)
        set(group plain)
        if("QString" IN_LIST includes)
            set(group of_string)
        endif()
        foreach(object_header IN LISTS zr_object_headers)
            if(object_header IN_LIST includes)
                set(group of_object)
            endif()
        endforeach()
        list(APPEND ${group} ${source})
    endforeach()
    add_custom_target(header_check ALL)
    zr_add_header_group(header_check_plain SOURCES ${plain})
    zr_add_header_group(header_check_string PRECOMPILED <QString> SOURCES ${of_string})
    zr_add_header_group(header_check_object PRECOMPILED <QObject> SOURCES ${of_object})
endfunction()

zr_add_header_check()
