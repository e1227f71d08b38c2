# What every target of ours is compiled with: link kelvaris_options.
add_library(kelvaris_options INTERFACE)

target_compile_options(kelvaris_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(kelvaris_options INTERFACE -Wno-restrict) # wrong about "literal" + std::string when optimised
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    target_compile_options(kelvaris_options INTERFACE -Wno-psabi) # tells what was passed otherwise before version 7
endif()
if(KELVARIS_WERROR)
    target_compile_options(kelvaris_options INTERFACE -Werror)
endif()

# Times and files beyond what 32 bits hold, on a 32-bit machine whose C library has both; the interface has neither type.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    add_compile_definitions(_TIME_BITS=64 _FILE_OFFSET_BITS=64)
endif()

if(KELVARIS_SANITIZE)
    target_compile_options(kelvaris_options INTERFACE
        -fsanitize=${KELVARIS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kelvaris_options INTERFACE -fsanitize=${KELVARIS_SANITIZE})
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_definitions(kelvaris_options INTERFACE _GLIBCXX_ASSERTIONS)
elseif(NOT KELVARIS_SANITIZE)
    # The release build is hardened: checked libc calls, stack protector, full RELRO; PIE by position-independent code.
    target_compile_options(kelvaris_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    target_link_options(kelvaris_options INTERFACE -Wl,-z,relro,-z,now)
    # Nothing that isn't used is kept, and relocations are packed where the linker can. One that can't only warns.
    target_compile_options(kelvaris_options INTERFACE -ffunction-sections -fdata-sections)
    target_link_options(kelvaris_options INTERFACE -Wl,--gc-sections)
    include(CheckLinkerFlag)
    check_linker_flag(CXX -Wl,--fatal-warnings,-z,pack-relative-relocs HAS_PACKED_RELOCATIONS)
    if(HAS_PACKED_RELOCATIONS)
        target_link_options(kelvaris_options INTERFACE -Wl,-z,pack-relative-relocs)
    endif()
endif()

include(CheckPIESupported)
check_pie_supported()
