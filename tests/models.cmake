# What tests and fuzz targets compare with, compiled once for all of them.

# Reads data set files, on none of the library's code.
add_library(small_reader STATIC EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/small_reader.cpp)
target_include_directories(small_reader PUBLIC ${PROJECT_SOURCE_DIR}/tests)

# Scans by going through every record and every place.
add_library(scan_model STATIC EXCLUDE_FROM_ALL
    ${PROJECT_SOURCE_DIR}/tests/scan_model.cpp ${PROJECT_SOURCE_DIR}/tests/scan_readings.cpp)
dsmake_room_targets(on records/values scl/text txt)
target_link_libraries(scan_model PUBLIC small_reader PRIVATE ${on})
target_compile_definitions(scan_model PRIVATE DSMAKE_UNICODE_DATA="${DSMAKE_UNICODE_DATA}")
