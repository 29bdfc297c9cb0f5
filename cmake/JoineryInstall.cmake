# Installing: libraries, the headers that hosts include, the CMake package, pkg-config files, and
# the desktop program with what a desktop needs to show it.
include(CMakePackageConfigHelpers)

set(JOINERY_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/joinery)
set(JOINERY_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/joinery)

file(STRINGS cmake/public_headers.txt public_headers REGEX "^[a-z]")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/public_headers.txt)
foreach(header ${public_headers})
    get_filename_component(folder ${header} DIRECTORY)
    set(origin src/${header})
    if(header MATCHES "^hostkit/")
        set(origin ${header})
    endif()
    install(FILES ${origin} DESTINATION ${JOINERY_HEADER_DIR}/${folder})
endforeach()

set_target_properties(joinery PROPERTIES EXPORT_NAME joinery)
install(TARGETS joinery EXPORT joineryTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
set(pc_files joinery)
if(TARGET joinery::qtsql)
    get_target_property(qtsql joinery::qtsql ALIASED_TARGET)
    set_target_properties(${qtsql} PROPERTIES OUTPUT_NAME joinery-qtsql EXPORT_NAME qtsql
                          INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${qtsql} EXPORT joineryTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    list(APPEND pc_files joinery-qtsql)
endif()
install(EXPORT joineryTargets NAMESPACE joinery:: DESTINATION ${JOINERY_PACKAGE_DIR})

configure_package_config_file(packaging/joineryConfig.cmake.in
    ${CMAKE_BINARY_DIR}/packaging/joineryConfig.cmake INSTALL_DESTINATION ${JOINERY_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/packaging/joineryConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/packaging/joineryConfig.cmake
              ${CMAKE_BINARY_DIR}/packaging/joineryConfigVersion.cmake
        DESTINATION ${JOINERY_PACKAGE_DIR})

# The way from the .pc files back to the prefix, so that an installation can be moved.
file(RELATIVE_PATH JOINERY_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
foreach(name ${pc_files})
    configure_file(packaging/${name}.pc.in ${CMAKE_BINARY_DIR}/packaging/${name}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/packaging/${name}.pc
            DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

if(TARGET joinery-desk)
    set_target_properties(joinery-desk PROPERTIES
                          INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS joinery-desk RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES packaging/joinery-desk.desktop
            DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    foreach(size 16 32 64 128)
        install(FILES resources/desk/joinery-desk-${size}.png RENAME joinery-desk.png
                DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
    endforeach()
    install(FILES resources/desk/joinery-desk.svg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
    install(FILES packaging/joinery-desk.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES packaging/completions/joinery-desk
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()
if(TARGET joinery-sql)
    install(TARGETS joinery-sql RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES packaging/joinery-sql.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES packaging/completions/joinery-sql
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
