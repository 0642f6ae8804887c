# What `cmake --install` lays down, in two components: `batch`, which is enough for a build machine, and `tool`, the
# window program, which needs it. Programs find their data in ../share/cindermill, and one that only another starts in
# ../libexec/cindermill, so any prefix serves.

include(GNUInstallDirs)
# What is not built yet is not laid down; to build it is not the installation's business.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY TRUE)

set(CINDERMILL_ID org.cindermill.Cindermill)
set(desktop_source "${PROJECT_SOURCE_DIR}/resources/desktop")
set(desktop_built "${PROJECT_BINARY_DIR}/desktop")
set(shared "${CMAKE_INSTALL_DATADIR}/cindermill")

install(TARGETS cindermill-batch RUNTIME COMPONENT batch)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/NodeTypes" DESTINATION "${shared}" COMPONENT batch)
# Of the documents go those that a user reads, with all that they lead to.
set(batch_documents)
foreach(document batch project-file lint effect-text effect-file chunk-file)
    list(APPEND batch_documents "${PROJECT_SOURCE_DIR}/docs/${document}.md")
endforeach()
install(FILES ${batch_documents} "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/resources/copyright"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}-batch" COMPONENT batch)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/schemas" DESTINATION "${CMAKE_INSTALL_DOCDIR}-batch" COMPONENT batch)
install(FILES "${PROJECT_SOURCE_DIR}/resources/completion/cindermill-batch.bash"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME cindermill-batch COMPONENT batch)

install(TARGETS cindermill RUNTIME COMPONENT tool)
install(TARGETS cindermill-picture RUNTIME DESTINATION libexec/cindermill COMPONENT tool)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/samples" DESTINATION "${shared}" COMPONENT tool)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT tool
        PATTERN man EXCLUDE PATTERN architecture.md EXCLUDE PATTERN recipes.md EXCLUDE PATTERN glossary.md EXCLUDE
        PATTERN pictures/campfire.png EXCLUDE PATTERN pictures/fountain.png EXCLUDE PATTERN pictures/samples.png EXCLUDE)
install(FILES "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/resources/copyright"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT tool)

# The version stands in the project's line alone; these carry it.
foreach(page cindermill cindermill-batch)
    configure_file("${PROJECT_SOURCE_DIR}/docs/man/${page}.1.in" "${desktop_built}/${page}.1" @ONLY)
endforeach()
foreach(file desktop metainfo.xml)
    configure_file("${desktop_source}/${CINDERMILL_ID}.${file}.in" "${desktop_built}/${CINDERMILL_ID}.${file}" @ONLY)
endforeach()
install(FILES "${desktop_built}/cindermill-batch.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT batch)
install(FILES "${desktop_built}/cindermill.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tool)
install(FILES "${desktop_built}/${CINDERMILL_ID}.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications"
        COMPONENT tool)
install(FILES "${desktop_built}/${CINDERMILL_ID}.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo"
        COMPONENT tool)
# The bus asks for a whole path, and only an installation knows its prefix.
set(service "${CINDERMILL_ID}.service")
install(CODE "set(CINDERMILL_PROGRAM \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/cindermill\")
              configure_file(\"${desktop_source}/${service}.in\" \"${desktop_built}/${service}\" @ONLY)"
        COMPONENT tool)
install(FILES "${desktop_built}/${service}" DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/services"
        COMPONENT tool)
install(FILES "${desktop_source}/${CINDERMILL_ID}.mime.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/mime/packages"
        RENAME ${CINDERMILL_ID}.xml COMPONENT tool)

# The program's icon, and those of its files. A picture that the program has too bears no size where it has 32 pixels.
set(pictures "${PROJECT_SOURCE_DIR}/resources/pictures")
function(cindermill_icon source folder name)
    set(icons "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
    foreach(size 16 32 48 64 128 256)
        set(picture "${source}-${size}.png")
        if(size EQUAL 32 AND EXISTS "${source}.png")
            set(picture "${source}.png")
        endif()
        install(FILES "${picture}" DESTINATION "${icons}/${size}x${size}/${folder}" RENAME ${name}.png COMPONENT tool)
    endforeach()
    install(FILES "${source}.svg" DESTINATION "${icons}/scalable/${folder}" RENAME ${name}.svg COMPONENT tool)
endfunction()
cindermill_icon("${pictures}/117" apps ${CINDERMILL_ID})
cindermill_icon("${pictures}/101" mimetypes application-x-cindermill-effect)
foreach(type efx animation)
    cindermill_icon("${desktop_source}/icons/application-x-cindermill-${type}" mimetypes
                    application-x-cindermill-${type})
endforeach()

# `cpack` in a build folder makes both packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME cindermill)
set(CPACK_PACKAGE_VENDOR Cindermill)
set(CPACK_PACKAGE_CONTACT "The Cindermill maintainers <maintainers@cindermill.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL tool batch)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME cindermill)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "Authoring tool for particle effects
Typed nodes are wired into a graph, which runs live in a preview and is
exported as a file that a games console runs as it stands.")
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "cindermill-batch (= ${PROJECT_VERSION}), libgl1-mesa-dri | libgl1-dri")
set(CPACK_DEBIAN_BATCH_PACKAGE_NAME cindermill-batch)
set(CPACK_DEBIAN_BATCH_DESCRIPTION "Checks and exports particle effects without a display
The Cindermill authoring tool without its windows: for build machines and
scripts. It holds the node types that both programs read.")
include(CPack)
