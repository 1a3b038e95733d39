# What `cmake --install` lays out and CPack packs: the launcher in bin/ and beside that the runtime
# folder, as the build assembled it.
#   Windows: both, as a zip.
#   Linux: both below lib/record-converter, with a link to the launcher in the prefix's own bin/, as
#   a .deb. Qt stays the system's: what the runtime folder links to, the package depends on.
set(root .)
set(documents .)
if(NOT WIN32)
    include(GNUInstallDirs)
    set(root lib/record-converter)
    set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/record-converter)
    set(link ${PROJECT_BINARY_DIR}/link/record-converter)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/link)
    file(CREATE_LINK ../${root}/bin/record-converter ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION bin)
endif()

set(libraries mediaconverter zelclient zelcore)
if(TARGET record_converter_product)
    list(APPEND libraries record_converter_product)
endif()
install(TARGETS record-converter RUNTIME DESTINATION ${root}/bin)
install(TARGETS ${libraries}
    RUNTIME DESTINATION ${root}/runtime LIBRARY DESTINATION ${root}/runtime)
# Without the libraries above: those are stripped on their way into a package.
install(DIRECTORY ${RECORD_CONVERTER_RUNTIME_DIR}/ DESTINATION ${root}/runtime
    REGEX "/(lib)?(mediaconverter|zelclient|zelcore|record-converter)\\.(so|dll|pdb)$" EXCLUDE)
if(WIN32)
    install(FILES LICENSE README.md THIRD-PARTY.md DESTINATION ${documents})
    # The licences of what the zip holds: Debian's own packages of the same sources have them.
    set(licensed libavcodec[0-9]* libx264-[0-9]* libdav1d[0-9]* libminizip[0-9]* libz-mingw-w64-dev
        libxxhash-dev g++-mingw-w64-x86-64-posix mingw-w64-common)
    if(RECORD_CONVERTER_HAS_QT)
        list(APPEND licensed libqt6core6 libqt6qml6 libqt6svg6)
    endif()
    foreach(package IN LISTS licensed)
        file(GLOB text /usr/share/doc/${package}/copyright)
        if(NOT text)
            message(FATAL_ERROR "There is no licence of ${package} to put into the package")
        endif()
        list(GET text 0 text)
        cmake_path(GET text PARENT_PATH folder)
        cmake_path(GET folder FILENAME name)
        install(FILES ${text} DESTINATION licences RENAME ${name}.txt)
    endforeach()
    foreach(licence IN ITEMS GPL-2 GPL-3 LGPL-2.1 LGPL-3)
        install(FILES /usr/share/common-licenses/${licence} DESTINATION licences RENAME ${licence}.txt)
    endforeach()
    install(FILES ${RECORD_CONVERTER_WINDOWS_PREFIX}/VERSIONS DESTINATION licences)
else()
    include(InstallDesktop)
endif()

set(CPACK_PACKAGE_NAME record-converter)
set(CPACK_PACKAGE_VENDOR "the record-converter developers")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
else()
    include(DebianPackage)
endif()
include(CPack)
