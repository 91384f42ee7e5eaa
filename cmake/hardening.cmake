# What makes faults harder to turn into attacks, where the compiler and the linker have it. The cost
# in speed is told in README.md.
option(DSMAKE_HARDENED "Protect stacks, check copies, fix addresses before the program starts" ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON) # of programs as well: see the policy of check_pie_supported
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(DSMAKE_HARDENED AND NOT DSMAKE_SANITIZE)
    include(CheckCXXCompilerFlag)
    include(CheckLinkerFlag)
    check_cxx_compiler_flag(-fstack-protector-strong HAS_STACK_PROTECTOR)
    if(HAS_STACK_PROTECTOR)
        add_compile_options(-fstack-protector-strong)
    endif()
    # The C library checks sizes in optimised builds only, and warns in others. What the
    # distribution's compiler defines by itself gives way.
    if(CMAKE_BUILD_TYPE MATCHES "Rel")
        add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    check_linker_flag(CXX -Wl,-z,relro,-z,now HAS_RELRO)
    if(HAS_RELRO)
        add_link_options(-Wl,-z,relro,-z,now)
    endif()
endif()
