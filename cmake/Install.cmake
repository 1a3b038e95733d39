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
