# What a Linux desktop and its shells look for: entry, icon and description of the application, man
# page, completions, documents. `packaging/` has those that are written by hand.
set(data ${CMAKE_INSTALL_DATAROOTDIR})
install(FILES packaging/record-converter.desktop DESTINATION ${data}/applications)
install(FILES packaging/record-converter.svg DESTINATION ${data}/icons/hicolor/scalable/apps)
install(FILES packaging/invalid.example.record_converter.metainfo.xml DESTINATION ${data}/metainfo)

install(FILES README.md THIRD-PARTY.md packaging/copyright DESTINATION ${documents})
file(GLOB pages CONFIGURE_DEPENDS docs/*.md docs/*.png)
install(FILES ${pages} DESTINATION ${documents}/docs)

# record_converter_install_compressed(SOURCE FOLDER NAME): without name and time, so that the same
# source gives the same file.
function(record_converter_install_compressed source folder name)
    set(compressed ${PROJECT_BINARY_DIR}/share/compressed/${name}.gz)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/share/compressed)
    install(CODE "execute_process(COMMAND gzip -9nc [[${source}]] OUTPUT_FILE [[${compressed}]]
        COMMAND_ERROR_IS_FATAL ANY)")
    install(FILES ${compressed} DESTINATION ${folder})
endfunction()

record_converter_install_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${documents} changelog)
record_converter_install_compressed(${PROJECT_SOURCE_DIR}/packaging/changelog.Debian ${documents}
    changelog.Debian)
# Made by the build, from the launcher's table of options.
set(made ${PROJECT_BINARY_DIR}/share)
record_converter_install_compressed(${made}/man/man1/record-converter.1 ${data}/man/man1
    record-converter.1)
install(FILES ${made}/bash-completion/completions/record-converter
    DESTINATION ${data}/bash-completion/completions)
install(FILES ${made}/zsh/vendor-completions/_record-converter
    DESTINATION ${data}/zsh/vendor-completions)

# The Qt that the runtime folder links to: relative where it lies below the same prefix, as links in
# a package are to be.
install(CODE "
    set(runtime \${CMAKE_INSTALL_PREFIX}/${root}/runtime)
    file(GLOB_RECURSE links LIST_DIRECTORIES true \$ENV{DESTDIR}\${runtime}/*)
    foreach(link IN LISTS links)
        if(IS_SYMLINK \${link})
            file(READ_SYMLINK \${link} target)
            cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX \${target} NORMALIZE inside)
            if(inside AND IS_ABSOLUTE \${target})
                string(LENGTH \"\$ENV{DESTDIR}\" staged)
                string(SUBSTRING \${link} \${staged} -1 folder)
                cmake_path(GET folder PARENT_PATH folder)
                file(RELATIVE_PATH target \${folder} \${target})
                file(REMOVE \${link})
                file(CREATE_LINK \${target} \${link} SYMBOLIC)
            endif()
        endif()
    endforeach()")
