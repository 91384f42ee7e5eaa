# Debian packages, which cpack makes of the preset "packages": its prefix is /usr, as the place of the
# library depends on that.
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL program library development python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_VENDOR dsmake)
set(DSMAKE_MAINTAINER "dsmake developers <dsmake@dsmake.invalid>" CACHE STRING
    "Name and address that the packages carry")
set(CPACK_PACKAGE_CONTACT "${DSMAKE_MAINTAINER}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(whole_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
set(library libdsmake${PROJECT_VERSION_MAJOR})

# Compresses what Debian wants compressed, and adds what only packages have.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/finish_packages.cmake)
set(CPACK_DSMAKE_FOLDER ${PROJECT_SOURCE_DIR})
set(CPACK_DSMAKE_VERSION ${whole_version})

set(about "
.
A data set file tells whether a value, such as a name or a card number,
occurs in a field of a table, and in which records, without holding the
text.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME dsmake)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS python3-dsmake)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "index of a table's values without its text
These are the programs that make data set files from tables of text, look
values up in them and scan texts for their records.${about}")

# What programs that are linked to the library depend on, and that the loader's cache is renewed.
file(CONFIGURE OUTPUT shlibs CONTENT "libdsmake @PROJECT_VERSION_MAJOR@ @library@ (>= @PROJECT_VERSION@)\n")
file(CONFIGURE OUTPUT triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    "${PROJECT_BINARY_DIR}/shlibs;${PROJECT_BINARY_DIR}/triggers")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "reader of data set files (library)
This is the library that looks values up in data set files, as dsmake makes
them, and finds their records in texts.${about}")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libdsmake-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${whole_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "g++ | c++-compiler")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "dsmake, pkgconf, cmake")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "reader of data set files (development)
These are the headers, the archive and examples of the library that looks
values up in data set files and finds their records in texts, for C++ and C.${about}")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-dsmake)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3, ${library} (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS dsmake)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS poppler-utils)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/cmake/debian/postinst;${PROJECT_SOURCE_DIR}/cmake/debian/prerm")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "reader of data set files (Python 3)
This is the module that looks values up in data set files and scans texts.
The program dsprepare makes the input of dsmake from tables as people export
them, and dsextract takes the text out of mails, documents and archives for
dsscan.${about}")

include(CPack)
