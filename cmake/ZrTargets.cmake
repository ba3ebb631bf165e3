# Helpers that give every library and program of the tree the same treatment.
include(GenerateExportHeader)

# zr_setup_library(TARGET ALIAS NAME FOLDER HEADER MACRO)
#   NAME    file and export name, e.g. ZrUtil
#   FOLDER  the source folder, which is also the include prefix
#   HEADER  generated export header below FOLDER, MACRO its export macro
function(zr_setup_library target alias_name folder header macro)
    add_library(ZrUtil::${alias_name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        EXPORT_NAME ${alias_name})
    set(generated ${PROJECT_BINARY_DIR}/generated)
    generate_export_header(${target}
        BASE_NAME ${macro}
        EXPORT_MACRO_NAME ${macro}_EXPORT
        EXPORT_FILE_NAME ${generated}/${folder}/${header})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${generated}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zr_private_options>)
    set_property(GLOBAL APPEND PROPERTY ZRUTIL_LIBRARIES ${target})
endfunction()
