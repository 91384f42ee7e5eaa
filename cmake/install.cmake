# What is installed beside the library, by the package that each file belongs to (packages.cmake), and
# uninstalling.
set(COMPLETIONS ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# The programs.
install(FILES docs/man/dsmake.1 docs/man/dslookup.1 docs/man/dsscan.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES docs/man/dsmake.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT program)
install(FILES completions/dsmake completions/dslookup completions/dsscan
    DESTINATION ${COMPLETIONS} COMPONENT program)
set(PROGRAM_DOCS ${CMAKE_INSTALL_DATADIR}/doc/dsmake)
install(FILES README.md CHANGELOG.md DESTINATION ${PROGRAM_DOCS} COMPONENT program)
file(GLOB DOCUMENTS CONFIGURE_DEPENDS docs/*.md docs/*.svg)
install(FILES ${DOCUMENTS} DESTINATION ${PROGRAM_DOCS}/docs COMPONENT program)
install(FILES examples/customers.csv examples/letter.txt
    DESTINATION ${PROGRAM_DOCS}/examples COMPONENT program)

# For Python. In this folder Debian looks for modules; the programs find them wherever the prefix is.
set(PYTHON_MODULES lib/python3/dist-packages)
install(DIRECTORY python/dsmake python/dsmake_tools DESTINATION ${PYTHON_MODULES} COMPONENT python
    FILES_MATCHING PATTERN "*.py" PATTERN py.typed PATTERN __pycache__ EXCLUDE)
install(PROGRAMS python/dsprepare python/dsextract
    DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT python)
install(FILES docs/man/dsprepare.1 docs/man/dsextract.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT python)
install(FILES completions/dsprepare completions/dsextract
    DESTINATION ${COMPLETIONS} COMPONENT python)
install(DIRECTORY examples/cluster USE_SOURCE_PERMISSIONS
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/python3-dsmake/examples COMPONENT python
    PATTERN __pycache__ EXCLUDE)

# For programmers. The example redact is left out: it uses parts that are not installed.
install(DIRECTORY examples/lookup examples/scan
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libdsmake-dev/examples COMPONENT development)

# Each of these holds the Unicode tables, and may be there alone.
set(components program library development)
set(packages dsmake libdsmake${PROJECT_VERSION_MAJOR} libdsmake-dev)
foreach(component package IN ZIP_LISTS components packages)
    install(FILES docs/unicode-license.txt
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

add_custom_target(uninstall COMMENT "Removing what was installed"
    COMMAND ${CMAKE_COMMAND} -D BUILD_DIR=${PROJECT_BINARY_DIR}
        -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake VERBATIM)
