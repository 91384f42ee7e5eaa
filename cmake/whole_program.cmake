# Release builds are optimised across source files: the way of a record leads through small functions
# of many of them. The objects hold ordinary code too, so that the installed library links anywhere.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    include(CheckIPOSupported)
    check_ipo_supported(RESULT DSMAKE_WHOLE_PROGRAM LANGUAGES CXX OUTPUT ignored)
    if(DSMAKE_WHOLE_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        set(CMAKE_CXX_COMPILE_OPTIONS_IPO -flto=auto -ffat-lto-objects)
    endif()
endif()
