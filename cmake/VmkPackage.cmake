# The files of an installed program, and the Debian package (packaging/make-deb.sh).
include(GNUInstallDirs)

# Documents whose compressed form is installed. Without a name and a time in it, the result is reproducible.
find_program(GZIP gzip REQUIRED)
function(vmk_install_compressed source name destination)
    set(output "${CMAKE_BINARY_DIR}/compressed/${name}.gz")
    add_custom_command(OUTPUT "${output}"
        COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/compressed"
        COMMAND ${GZIP} -9nc "${source}" > "${output}"
        DEPENDS "${source}" VERBATIM)
    add_custom_target(compressed_${name} ALL DEPENDS "${output}")
    add_dependencies(vellumark compressed_${name})
    install(FILES "${output}" DESTINATION "${destination}")
endfunction()

# The changelog of the package is that of the project, in Debian's format.
set(changes "${CMAKE_BINARY_DIR}/changelog")
add_custom_command(OUTPUT "${changes}"
    COMMAND ${CMAKE_COMMAND} "-DSOURCE=${CMAKE_SOURCE_DIR}/CHANGELOG.md" "-DOUTPUT=${changes}"
        -P "${CMAKE_SOURCE_DIR}/cmake/DebianChangelog.cmake"
    DEPENDS "${CMAKE_SOURCE_DIR}/CHANGELOG.md" "${CMAKE_SOURCE_DIR}/cmake/DebianChangelog.cmake" VERBATIM)

vmk_install_compressed("${CMAKE_SOURCE_DIR}/docs/vmk.1" vmk.1 "${CMAKE_INSTALL_MANDIR}/man1")
vmk_install_compressed("${CMAKE_SOURCE_DIR}/docs/vellumark.1" vellumark.1 "${CMAKE_INSTALL_MANDIR}/man1")
vmk_install_compressed("${changes}" changelog "${CMAKE_INSTALL_DOCDIR}")

# The date of the newest section of the changelog.
file(STRINGS "${CMAKE_SOURCE_DIR}/CHANGELOG.md" sections REGEX "^## ")
list(GET sections 0 newest)
if(NOT newest MATCHES "^## ([0-9.]+) \\(([0-9-]+)\\)$" OR NOT CMAKE_MATCH_1 VERSION_EQUAL PROJECT_VERSION)
    message(FATAL_ERROR "CHANGELOG.md begins with \"${newest}\", not with version ${PROJECT_VERSION}")
endif()
set(VMK_RELEASE_DATE "${CMAKE_MATCH_2}")
configure_file("${CMAKE_SOURCE_DIR}/data/desktop/vellumark.metainfo.xml" "${CMAKE_BINARY_DIR}/vellumark.metainfo.xml" @ONLY)

set(data "${CMAKE_SOURCE_DIR}/data")
install(TARGETS vellumark vmk RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# An installed program creates a separate workspace for each user from these.
install(DIRECTORY "${data}/VMK Office" "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/sounds"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/vellumark)
install(FILES "${data}/desktop/vellumark.desktop" DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES "${data}/icons/vellumark.svg" DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES "${data}/desktop/vellumark.xml" DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES "${CMAKE_BINARY_DIR}/vellumark.metainfo.xml" DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES "${data}/completions/vmk.bash" DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vmk)
install(FILES "${data}/completions/vellumark.bash"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vellumark)
install(FILES "${data}/completions/_vmk" "${data}/completions/_vellumark"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES "${CMAKE_SOURCE_DIR}/packaging/copyright" DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES "${CMAKE_SOURCE_DIR}/packaging/lintian-overrides"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME vellumark)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vellumark)
set(CPACK_PACKAGE_CONTACT "The Vellumark developers <vellumark@localhost.localdomain>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor and validator for FictionBook 2 books")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Vellumark shows a book in the FictionBook 2 format as its XML: coloured,
indented, with every tag as ordinary text. It validates a book against the
schema and puts the caret at the error, finds and replaces with regular
expressions, applies tables of replacements to whole books, checks the
spelling, and manages the images of a book.
.
vmk, the companion for the command line, offers the same checks and
conversions to scripts.")
set(CPACK_PACKAGE_FILE_NAME "vellumark_${PROJECT_VERSION}_${CMAKE_LIBRARY_ARCHITECTURE}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The icons and the platform of the window are plug-ins, which no executable links.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "hunspell-en-us, hunspell-ru, hunspell-uk, hunspell-de-de, hunspell-fr, fonts-liberation, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_OUTPUT_FILE_PREFIX "${CMAKE_BINARY_DIR}/package")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
