# Install rules. Components: Runtime (shared libraries), Development (headers, name links, CMake package,
# pkg-config files), Tools (programs). The installed tree may be moved: nothing in it holds an absolute path.

option(ZRUTIL_INSTALL "Generate the install rules" ${PROJECT_IS_TOP_LEVEL})
if(NOT ZRUTIL_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)
include(ZrHeaders)

get_property(zr_libraries GLOBAL PROPERTY ZRUTIL_LIBRARIES)
set(zr_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZrUtil)
set(zr_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH zr_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH zr_pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" zr_pc_to_prefix ${zr_pc_to_prefix})

# Libraries. The headers ask their users for C++17.
foreach(library IN LISTS zr_libraries)
    target_compile_features(${library} PUBLIC cxx_std_17)
    set_target_properties(${library} PROPERTIES INSTALL_RPATH "$ORIGIN")
endforeach()
install(TARGETS ${zr_libraries} EXPORT ZrUtilTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)

# Headers, each below the folder that its #include line names.
zr_public_headers(zr_headers)
foreach(header IN LISTS zr_headers)
    set(base ${PROJECT_SOURCE_DIR})
    if(header IN_LIST zr_headers_GENERATED)
        set(base ${PROJECT_BINARY_DIR}/generated)
    endif()
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${base}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT Development)
endforeach()

# CMake package. Before version 1.0 a minor version may break its users, so only the same one is compatible.
install(EXPORT ZrUtilTargets NAMESPACE ZrUtil:: DESTINATION ${zr_package_dir} COMPONENT Development)
configure_package_config_file(cmake/ZrUtilConfig.cmake.in ${PROJECT_BINARY_DIR}/ZrUtilConfig.cmake
    INSTALL_DESTINATION ${zr_package_dir}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZrUtilConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZrUtilConfig.cmake ${PROJECT_BINARY_DIR}/ZrUtilConfigVersion.cmake
    DESTINATION ${zr_package_dir} COMPONENT Development)

# pkg-config: ZrKit requires ZrUtil.
foreach(package ZrUtil ZrKit)
    configure_file(cmake/${package}.pc.in ${PROJECT_BINARY_DIR}/${package}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${zr_pkgconfig_dir} COMPONENT Development)
endforeach()

# Tools.
set(zr_tools)
foreach(tool zr ZrSurvey)
    if(TARGET ${tool})
        list(APPEND zr_tools ${tool})
        set_target_properties(${tool} PROPERTIES INSTALL_RPATH "$ORIGIN/${zr_bin_to_lib}")
        install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Tools)
    endif()
endforeach()
# The line that the tour of ZrSurvey looks for.
if(TARGET ZrSurvey)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/sidescan-xtf
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/ZrSurvey/data COMPONENT Tools)
endif()

# The proof of all this: a project that uses the installed package.
if(ZRUTIL_BUILD_TESTS)
    set(zr_consumer_flags ${CMAKE_CXX_FLAGS})
    if(ZRUTIL_SANITIZE)
        string(APPEND zr_consumer_flags " -fsanitize=${ZRUTIL_SANITIZE}")
    endif()
    add_test(NAME consumer COMMAND ${CMAKE_COMMAND}
        -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DBUILD_DIR=${PROJECT_BINARY_DIR}
        -DWORK_DIR=${PROJECT_BINARY_DIR}/consumer -DVERSION=${PROJECT_VERSION}
        -DINCLUDE_DIR=${CMAKE_INSTALL_INCLUDEDIR} -DLIB_DIR=${CMAKE_INSTALL_LIBDIR}
        -DBIN_DIR=${CMAKE_INSTALL_BINDIR} "-DTOOLS=${zr_tools}"
        -DGENERATOR=${CMAKE_GENERATOR} -DCXX=${CMAKE_CXX_COMPILER} -DCXX_FLAGS=${zr_consumer_flags}
        -DBUILD_TYPE=${CMAKE_BUILD_TYPE}
        -P ${PROJECT_SOURCE_DIR}/tests/consumer/run_consumer.cmake)
    set_tests_properties(consumer PROPERTIES LABELS slow TIMEOUT 300 ENVIRONMENT "LC_ALL=C.UTF-8")
endif()
