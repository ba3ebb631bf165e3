# Installs the build into a prefix of its own, moves that prefix, and builds and runs the consumer against it.
#
# cmake -DSOURCE_DIR=... -DBUILD_DIR=... -DWORK_DIR=... -DVERSION=... -DINCLUDE_DIR=include -DLIB_DIR=lib
#     -DBIN_DIR=bin -DTOOLS=... -DGENERATOR=... -DCXX=... -DCXX_FLAGS=... -DBUILD_TYPE=... -P run_consumer.cmake
#
# SOURCE_DIR and BUILD_DIR are those of the library; WORK_DIR is emptied first. TOOLS are programs to be installed.

set(first ${WORK_DIR}/first)
set(prefix ${WORK_DIR}/moved)

# run(WHAT COMMAND...): runs a command; the script ends when it fails. Its output is left in `output`.
function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message("${output}")
        message(FATAL_ERROR "${what} failed: ${result}")
    endif()
    message(STATUS "${what}: done")
    set(output "${output}" PARENT_SCOPE)
endfunction()

# require_own_libraries(PROGRAM): the program loads the libraries of the moved prefix, not those of the build.
function(require_own_libraries program)
    file(GET_RUNTIME_DEPENDENCIES EXECUTABLES ${program} RESOLVED_DEPENDENCIES_VAR found
        UNRESOLVED_DEPENDENCIES_VAR missing PRE_INCLUDE_REGEXES "^libZr" PRE_EXCLUDE_REGEXES ".*")
    if(missing OR NOT found)
        message(FATAL_ERROR "${program}: libraries \"${found}\", missing \"${missing}\"")
    endif()
    foreach(library IN LISTS found)
        cmake_path(IS_PREFIX prefix "${library}" NORMALIZE inside)
        if(NOT inside)
            message(FATAL_ERROR "${program} loads ${library}")
        endif()
    endforeach()
endfunction()

function(install_components)
    run("install Runtime" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${first} --component Runtime)
    file(GLOB_RECURSE unwanted ${first}/*.h ${first}/*.cmake ${first}/*.pc ${first}/*.so)
    if(unwanted)
        message(FATAL_ERROR "component Runtime holds files of development: ${unwanted}")
    endif()
    run("install Development" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${first} --component Development)
    if(TOOLS)
        run("install Tools" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${first} --component Tools)
    endif()
    file(RENAME ${first} ${prefix})
endfunction()

function(compare_headers)
    file(GLOB_RECURSE wanted RELATIVE ${SOURCE_DIR}
        ${SOURCE_DIR}/ZrDebugLog/*.h ${SOURCE_DIR}/ZrUtil/*.h ${SOURCE_DIR}/ZrKit/*.h)
    list(APPEND wanted ZrDebugLog/ZrDebugLogExport.h ZrUtil/ZrExport.h ZrKit/ZrKitExport.h)
    file(GLOB_RECURSE found RELATIVE ${prefix}/${INCLUDE_DIR} ${prefix}/${INCLUDE_DIR}/*)
    list(SORT wanted)
    list(SORT found)
    if(NOT wanted STREQUAL found)
        message(FATAL_ERROR "installed headers: ${found}\nwanted: ${wanted}")
    endif()
    list(LENGTH found count)
    message(STATUS "${count} headers installed")
endfunction()

# No installed text may name a folder of the machine that built it.
function(require_movable)
    file(GLOB_RECURSE texts ${prefix}/*.cmake ${prefix}/*.pc ${prefix}/*.h)
    foreach(text IN LISTS texts)
        file(READ ${text} content)
        foreach(folder ${SOURCE_DIR} ${BUILD_DIR} ${first})
            string(FIND "${content}" "${folder}" place)
            if(NOT place EQUAL -1)
                message(FATAL_ERROR "${text} names ${folder}")
            endif()
        endforeach()
    endforeach()
endfunction()

function(use_cmake_package)
    set(build ${WORK_DIR}/build)
    run("configure the consumer" ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_FUNCTION_LIST_DIR} -B ${build}
        -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${CXX_FLAGS}
        -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_PREFIX_PATH=${prefix} -DWANTED_VERSION=${VERSION})
    run("build the consumer" ${CMAKE_COMMAND} --build ${build})
    require_own_libraries(${build}/consumer)
    run("run the consumer" ${build}/consumer)
    message(STATUS "${output}")
endfunction()

function(use_pkg_config)
    find_program(pkg_config pkg-config)
    if(NOT pkg_config)
        message(STATUS "there is no pkg-config: the .pc files are not tried")
        return()
    endif()
    set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIB_DIR}/pkgconfig)
    run("ask pkg-config" ${pkg_config} --cflags --libs "ZrKit >= ${VERSION}")
    separate_arguments(flags UNIX_COMMAND "${output}")
    separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS}")
    set(program ${WORK_DIR}/pkg_config_consumer)
    run("build with pkg-config" ${CXX} ${cxx_flags} -std=c++17 -fPIC ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/main.cpp
        -o ${program} ${flags} -Wl,-rpath,${prefix}/${LIB_DIR})
    require_own_libraries(${program})
    run("run what pkg-config built" ${program})
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
install_components()
compare_headers()
require_movable()
use_cmake_package()
use_pkg_config()
foreach(tool IN LISTS TOOLS)
    require_own_libraries(${prefix}/${BIN_DIR}/${tool})
    run("run ${tool} --help" ${prefix}/${BIN_DIR}/${tool} --help)
    # Where the program looks for the line of its tour.
    file(GLOB line ${prefix}/${BIN_DIR}/../share/${tool}/data/sidescan-xtf/*.xtf)
    if(tool STREQUAL "ZrSurvey" AND NOT line)
        message(FATAL_ERROR "the side-scan line of the tour is not installed")
    endif()
endforeach()
