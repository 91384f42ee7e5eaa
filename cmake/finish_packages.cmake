# Run by cpack when all files stand in their folders, before these become packages: compresses man
# pages, and adds the change logs and what is said of the licence.
function(compress file)
    execute_process(COMMAND gzip -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD "${file}.gz" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

# Debian's own log tells of packages; its date is that of SOURCE_DATE_EPOCH, if that is set.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
string(CONCAT log "dsmake (${CPACK_DSMAKE_VERSION}) unstable; urgency=medium\n\n"
    "  * changelog.gz tells what is new in this version.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} key)
    set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr")
    set(documents "${root}/share/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME}")
    file(WRITE "${documents}/changelog.Debian" "${log}")
    configure_file("${CPACK_DSMAKE_FOLDER}/CHANGELOG.md" "${documents}/changelog" COPYONLY)
    file(GLOB pages "${root}/share/man/man?/*.[15]")
    foreach(file IN LISTS pages ITEMS "${documents}/changelog.Debian" "${documents}/changelog")
        compress("${file}")
    endforeach()
    configure_file("${CPACK_DSMAKE_FOLDER}/cmake/debian/copyright" "${documents}/copyright" COPYONLY
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    execute_process(COMMAND find "${root}" -type d -exec chmod 755 {} + # whatever the umask
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()
