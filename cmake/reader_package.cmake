# dsmake::reader, the installed library: what reads data set files, in one library, with the headers
# that its callers include and no others. It is an archive, unless BUILD_SHARED_LIBS is on; then the
# shared library stands beside it, for Python and for programs that wish so.
set(DSMAKE_READER_ROOMS scl/text scl/status scl/io scl/crc txt cerc ucl txtdfc records/values tla/format
    tla/read/keys tla/read/entries tla/read tla/scan tla/c)
set(DSMAKE_READER_HEADERS
    src/tla/read/tla_data_set_connector_base.hpp
    src/tla/read/tla_data_set_connector_file.hpp
    src/tla/read/entries/tla_data_set_entry_base.hpp
    src/tla/read/entries/tla_data_set_entry_file.hpp
    src/tla/scan/tla_scan_index.hpp
    src/tla/scan/tla_text_scan.hpp
    src/records/values/field_descriptor.hpp
    src/records/values/tla_padded_buffer.hpp
    src/records/values/tla_formatters.hpp
    src/records/values/tla_status_codes.hpp
    src/records/values/tla_formatted_text.hpp
    src/txtdfc/dfc_facets.hpp
    src/txtdfc/dfc_format_codec.hpp
    src/txtdfc/line_ends.hpp
    src/txtdfc/txtdfc_format_codec.hpp
    src/txtdfc/txtdfc_text_view.hpp
    src/txtdfc/txtdfc_token_pool.hpp
    src/txtdfc/txtdfc_token_values.hpp
    src/ucl/ucl_buffer_patcher.hpp
    src/txt/txt_associations.hpp
    src/txt/txt_physical_token.hpp
    src/txt/txt_text_store.hpp
    src/txt/txt_text_view.hpp
    src/txt/txt_token.hpp
    src/txt/txt_token_types.hpp
    src/txt/txt_token_walk.hpp
    src/txt/txt_virtual_token.hpp
    src/txt/word_rules.hpp
    src/txt/word_runs.hpp
    src/txt/word_state.hpp
    src/scl/crc/scl_crc64.hpp
    src/scl/io/scl_buffer.hpp
    src/scl/io/scl_buffers.hpp
    src/scl/io/scl_endian.hpp
    src/scl/io/scl_ostream.hpp
    src/scl/status/scl_status.hpp
    src/scl/status/scl_status_codes.hpp
    src/scl/status/scl_status_lookup.hpp
    src/scl/text/scl_block.hpp
    src/scl/text/scl_case.hpp
    src/scl/text/scl_normalize.hpp
    src/scl/text/scl_string.hpp
    src/scl/text/scl_text_span.hpp
    src/scl/text/scl_unicode.hpp
    src/scl/text/scl_utf.hpp)

# dsmake_reader_library(NAME [STATIC|SHARED]): the library from the objects of its rooms.
function(dsmake_reader_library name)
    dsmake_room_targets(rooms ${DSMAKE_READER_ROOMS})
    list(TRANSFORM rooms REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
    add_library(${name} ${ARGN} ${objects})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX OUTPUT_NAME dsmake
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    get_target_property(type ${name} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
        set(map ${PROJECT_SOURCE_DIR}/cmake/dsmake.map)
        target_link_options(${name} PRIVATE -Wl,--version-script=${map} -Wl,--no-undefined)
        set_target_properties(${name} PROPERTIES LINK_DEPENDS ${map})
    elseif(DSMAKE_WHOLE_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Only the ordinary code goes out: the other form fits no compiler but the one that made it.
        add_custom_command(TARGET ${name} POST_BUILD VERBATIM
            COMMAND ${CMAKE_OBJCOPY} --wildcard --remove-section=.gnu.lto_*
                --remove-section=.gnu.debuglto_* $<TARGET_FILE:${name}>)
    endif()
endfunction()

dsmake_reader_library(dsmake_reader)
if(BUILD_SHARED_LIBS)
    add_library(dsmake_shared ALIAS dsmake_reader)
elseif(NOT DSMAKE_SANITIZE) # sanitized objects would ask the same of whoever loads the library
    dsmake_reader_library(dsmake_shared SHARED)
    install(TARGETS dsmake_shared LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT library NAMELINK_COMPONENT development)
endif()
add_library(dsmake::reader ALIAS dsmake_reader)
set_target_properties(dsmake_reader PROPERTIES EXPORT_NAME reader)
target_compile_features(dsmake_reader PUBLIC cxx_std_20)
target_sources(dsmake_reader PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src
    FILES ${DSMAKE_READER_HEADERS})

include(CMakePackageConfigHelpers)
set(READER_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/dsmake)
install(TARGETS dsmake_reader EXPORT dsmake
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT library NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dsmake)
# The C interface, found as "dsmake.h".
install(FILES src/tla/c/dsmake.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/dsmake)
install(EXPORT dsmake NAMESPACE dsmake:: FILE dsmakeConfig.cmake DESTINATION ${READER_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/dsmakeConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/dsmakeConfigVersion.cmake DESTINATION ${READER_PACKAGE_DIR})

# For builds without CMake. Relative to where the file itself lies, so that the installed tree can be
# moved.
file(RELATIVE_PATH READER_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/dsmake.pc.in dsmake.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/dsmake.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
