# jsoncpp as target `jsoncpp`: compiled into our programs from the folder of its source package, or the system's shared
# library. With the source a build is self-contained: it brings the C++ runtime along as well.
set(KELVARIS_JSONCPP_SOURCE "" CACHE PATH "Folder of jsoncpp's source package; empty: the shared library")
option(KELVARIS_SELF_CONTAINED "Use the source that script/bootstrap has fetched, where it is there" OFF)

set(jsoncpp_source ${KELVARIS_JSONCPP_SOURCE})
if(NOT jsoncpp_source AND KELVARIS_SELF_CONTAINED AND EXISTS ${PROJECT_SOURCE_DIR}/build/jsoncpp)
    set(jsoncpp_source ${PROJECT_SOURCE_DIR}/build/jsoncpp)
endif()

if(NOT jsoncpp_source)
    set(SELF_CONTAINED OFF)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(JSONCPP REQUIRED IMPORTED_TARGET jsoncpp)
    add_library(jsoncpp ALIAS PkgConfig::JSONCPP)
    message(STATUS "jsoncpp: the shared library, version ${JSONCPP_VERSION}")
    return()
endif()

set(SELF_CONTAINED ON)
set(jsoncpp_files json_reader.cpp json_value.cpp json_writer.cpp)
list(TRANSFORM jsoncpp_files PREPEND ${jsoncpp_source}/src/lib_json/)
foreach(file ${jsoncpp_files} ${jsoncpp_source}/include/json/json.h ${jsoncpp_source}/include/json/version.h)
    if(NOT EXISTS ${file})
        message(FATAL_ERROR "${jsoncpp_source} isn't jsoncpp's source: ${file} is missing. "
            "KELVARIS_JSONCPP_SOURCE names that folder; without one, script/bootstrap fetches it into build/jsoncpp.")
    endif()
endforeach()
file(STRINGS ${jsoncpp_source}/include/json/version.h jsoncpp_version REGEX "define JSONCPP_VERSION_STRING")
string(REGEX REPLACE ".*\"(.*)\".*" "\\1" jsoncpp_version "${jsoncpp_version}")
message(STATUS "jsoncpp: inside, version ${jsoncpp_version} from ${jsoncpp_source}")

# Optimised in every build, without our warnings, and hardened as the shared one is.
add_library(jsoncpp STATIC ${jsoncpp_files})
target_include_directories(jsoncpp SYSTEM PUBLIC ${jsoncpp_source}/include)
target_compile_options(jsoncpp PRIVATE -w -O2 -DNDEBUG -ffunction-sections -fdata-sections)
if(NOT KELVARIS_SANITIZE)
    target_compile_options(jsoncpp PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
endif()
# All that it needs of libm is one function that libc has as well: a library less to load.
target_link_options(jsoncpp INTERFACE -Wl,--as-needed)
target_link_libraries(jsoncpp INTERFACE -Wl,-lc)
