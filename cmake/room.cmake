# dsmake_room(NAME SOURCES ... ON ...): the static library of one room of src/, whose folder is NAME.
# ON names the rooms whose headers its files include, all of them and no others;
# tools/check_rooms.py compares the two, as the compiler finds every header of src/ anyway.
#
# The objects fit a shared library as well as the program: they lie anywhere in memory, and nothing
# of them is visible outside but what the installed headers declare. So the program pays nothing for
# it: what cannot be replaced from outside is called and inlined directly.
function(dsmake_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;ON" ${ARGN})
    dsmake_room_targets(target ${name})
    add_library(${target} STATIC ${ROOM_SOURCES})
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
    dsmake_room_targets(on ${ROOM_ON})
    target_link_libraries(${target} PUBLIC ${on})
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
endfunction()

# dsmake_room_targets(RESULT ROOMS...): the libraries of rooms, as tla/read has dsmake_tla_read.
function(dsmake_room_targets result)
    list(TRANSFORM ARGN REPLACE "/" "_")
    list(TRANSFORM ARGN PREPEND dsmake_)
    set(${result} ${ARGN} PARENT_SCOPE)
endfunction()
