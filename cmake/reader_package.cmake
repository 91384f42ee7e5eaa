# dsmake::reader, the installed library: what reads data set files, in one archive, with the headers
# that its callers include and no others.
dsmake_room_targets(READER_ROOMS scl/text scl/status scl/io scl/crc txt cerc ucl txtdfc records
    tla/format tla/read)
list(TRANSFORM READER_ROOMS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE READER_OBJECTS)
add_library(dsmake_reader STATIC ${READER_OBJECTS})
add_library(dsmake::reader ALIAS dsmake_reader)
set_target_properties(dsmake_reader PROPERTIES EXPORT_NAME reader LINKER_LANGUAGE CXX)
target_compile_features(dsmake_reader PUBLIC cxx_std_20)
target_sources(dsmake_reader PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src FILES
        src/tla/read/tla_data_set_connector_base.hpp
        src/tla/read/tla_data_set_connector_file.hpp
        src/tla/read/tla_data_set_entry_base.hpp
        src/tla/read/tla_data_set_entry_file.hpp
        src/tla/format/data_set_header.hpp
        src/records/field_descriptor.hpp
        src/records/scratch_text.hpp
        src/records/tla_formatters.hpp
        src/records/tla_status_codes.hpp
        src/records/tla_text_in_form.hpp
        src/scl/crc/scl_crc64.hpp
        src/scl/io/scl_buffer.hpp
        src/scl/status/scl_status.hpp
        src/scl/status/scl_status_codes.hpp
        src/scl/status/scl_status_lookup.hpp
        src/scl/text/scl_normalize.hpp
        src/scl/text/scl_string.hpp
        src/scl/text/scl_text_span.hpp
        src/scl/text/scl_unicode.hpp
        src/scl/text/scl_utf.hpp
        src/txt/txt_token_types.hpp
        src/txt/txt_token_walk.hpp
        src/txt/word_rules.hpp
        src/txt/word_runs.hpp
        src/txt/word_state.hpp)
if(DSMAKE_WHOLE_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Only the ordinary code goes out: the other form fits no compiler but the one that made it.
    add_custom_command(TARGET dsmake_reader POST_BUILD VERBATIM
        COMMAND ${CMAKE_OBJCOPY} --wildcard --remove-section=.gnu.lto_*
            --remove-section=.gnu.debuglto_* $<TARGET_FILE:dsmake_reader>)
endif()

include(CMakePackageConfigHelpers)
set(READER_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/dsmake)
install(TARGETS dsmake_reader EXPORT dsmake
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dsmake)
install(EXPORT dsmake NAMESPACE dsmake:: FILE dsmakeConfig.cmake DESTINATION ${READER_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/dsmakeConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/dsmakeConfigVersion.cmake DESTINATION ${READER_PACKAGE_DIR})
