# SPDX-License-Identifier: MIT

# What distributions build their programs with. Included once, before any target: it holds for all.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-fstack-protector-strong -fstack-clash-protection -Wformat -Werror=format-security)
# The library's checks need optimisation.
add_compile_options($<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
add_link_options(LINKER:-z,relro LINKER:-z,now)

# Jumps may land only where they are meant to; each kind of processor has a name of its own for it.
foreach(flag -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "KAVLOR_HAS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
        add_compile_options(${flag})
    endif()
endforeach()
