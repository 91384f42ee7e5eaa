# What is installed beside the program and the library, uninstalling, and Debian packages: dsmake
# (the programs) and libdsmake-dev (the library).
set(PROGRAM_DOCS ${CMAKE_INSTALL_DATADIR}/doc/dsmake)
set(LIBRARY_DOCS ${CMAKE_INSTALL_DATADIR}/doc/libdsmake-dev)

install(FILES docs/man/dsmake.1 docs/man/dslookup.1 docs/man/dsscan.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES docs/man/dsmake.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT program)
install(FILES README.md CHANGELOG.md docs/unicode-license.txt
    DESTINATION ${PROGRAM_DOCS} COMPONENT program)
file(GLOB DOCUMENTS CONFIGURE_DEPENDS docs/*.md)
install(FILES ${DOCUMENTS} DESTINATION ${PROGRAM_DOCS}/docs COMPONENT program)
# Archives hold the tables as well, and the package may be there alone.
install(FILES docs/unicode-license.txt docs/reading.md DESTINATION ${LIBRARY_DOCS}
    COMPONENT development)
install(DIRECTORY examples DESTINATION ${LIBRARY_DOCS} COMPONENT development
    PATTERN redact EXCLUDE) # uses parts that are not installed

add_custom_target(uninstall COMMENT "Removing what was installed"
    COMMAND ${CMAKE_COMMAND} -D BUILD_DIR=${PROJECT_BINARY_DIR}
        -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake VERBATIM)

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL program development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_VENDOR dsmake)
set(CPACK_PACKAGE_CONTACT "the dsmake developers <dsmake@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "index of a table's values without its text")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME dsmake)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "These are the programs that make data set files from tables of text, look
 values up in them and scan texts for their records. A data set file tells whether a value, such as a name or card number, occurs
 in a field of a table, and in which records, without holding the text.")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libdsmake-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "This is a C++ library, with an interface for C, that looks values up in data set
 files as dsmake makes them, and what a scanner of texts needs beside it.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "g++ | c++-compiler")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS dsmake)
include(CPack)
