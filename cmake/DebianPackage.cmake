set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER
    "${CPACK_PACKAGE_VENDOR} <record-converter@example.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "turns a meeting recording into an ordinary MP4 file")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"It copies picture and sound wherever MP4 can carry them, transcodes the
rest, and says in a small notice when the recording is ready. It works in
the terminal, and from a file manager by \"Open with\".")
# What opens the finished recording from the notice.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${RECORD_CONVERTER_RUNTIME_DIR})
# What is loaded by name at run time stands in no library's own list.
get_property(linked GLOBAL PROPERTY RECORD_CONVERTER_LINKED)
find_program(DPKG_QUERY_PROGRAM dpkg-query)
if(linked AND DPKG_QUERY_PROGRAM)
    execute_process(COMMAND ${DPKG_QUERY_PROGRAM} --search ${linked}
        OUTPUT_VARIABLE owners ERROR_QUIET)
    string(REGEX MATCHALL "[a-z0-9.+-]+:[a-z0-9]+[,:] " owners "${owners}")
    list(TRANSFORM owners REPLACE ":.*" "")
    list(REMOVE_DUPLICATES owners)
    list(JOIN owners ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
endif()
install(FILES packaging/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
    RENAME record-converter)
