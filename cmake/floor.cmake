# dsmake_floor(NAME SOURCES ... ON ...): the static library of one folder of src/, standing on the
# floors named and on no others, so that an include from elsewhere does not link.
function(dsmake_floor name)
    cmake_parse_arguments(FLOOR "" "" "SOURCES;ON" ${ARGN})
    add_library(dsmake_${name} STATIC ${FLOOR_SOURCES})
    target_include_directories(dsmake_${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
    list(TRANSFORM FLOOR_ON PREPEND dsmake_)
    target_link_libraries(dsmake_${name} PUBLIC ${FLOOR_ON})
endfunction()
