# Install rules and the Debian package. The program goes to bin; our shared
# libraries and the plugin to a private library folder that the executable
# finds relative to itself ($ORIGIN), so an unpacked tree runs from anywhere.
include(GNUInstallDirs)

# The distribution's multiarch folder when there is one (lib/x86_64-linux-gnu),
# whatever the prefix: a private folder there is outside the linker's path.
if(CMAKE_LIBRARY_ARCHITECTURE)
    set(ZUVI_CARPETA_PRIVADA lib/${CMAKE_LIBRARY_ARCHITECTURE}/zuvi-produccion)
else()
    set(ZUVI_CARPETA_PRIVADA ${CMAKE_INSTALL_LIBDIR}/zuvi-produccion)
endif()
file(RELATIVE_PATH zuvi_relativo ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}
     ${CMAKE_INSTALL_PREFIX}/${ZUVI_CARPETA_PRIVADA})

# The host and the shell are static, inside the executable.
set(zuvi_bibliotecas zuvi_runtime zuvi_contrato zuvi_produccion ZuviProduccion)
set_target_properties(${zuvi_bibliotecas} PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(zuvi-produccion PROPERTIES INSTALL_RPATH "$ORIGIN/${zuvi_relativo}")
target_compile_definitions(zuvi_app PRIVATE ZUVI_PLUGIN_RELATIVO="${zuvi_relativo}")

install(TARGETS zuvi-produccion RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS ${zuvi_bibliotecas}
        LIBRARY DESTINATION ${ZUVI_CARPETA_PRIVADA} NAMELINK_SKIP)

set(zuvi_emp ${CMAKE_SOURCE_DIR}/packaging)
set(zuvi_id mx.zuvi.produccion)
install(FILES ${zuvi_emp}/${zuvi_id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${zuvi_emp}/${zuvi_id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${zuvi_emp}/icono/zuvi-produccion.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(lado 48 64 128 256)
    install(FILES ${zuvi_emp}/icono/zuvi-produccion-${lado}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${lado}x${lado}/apps
            RENAME zuvi-produccion.png)
endforeach()

# The distribution keeps manual pages and changelogs compressed, without a
# time stamp, so two builds give the same package.
set(zuvi_comprimidos ${CMAKE_BINARY_DIR}/empaque)
file(MAKE_DIRECTORY ${zuvi_comprimidos})
foreach(par "zuvi-produccion.1" "changelog")
    add_custom_command(OUTPUT ${zuvi_comprimidos}/${par}.gz
        COMMAND gzip -9 -n -c ${zuvi_emp}/${par} > ${zuvi_comprimidos}/${par}.gz
        DEPENDS ${zuvi_emp}/${par} VERBATIM)
    list(APPEND zuvi_gz ${zuvi_comprimidos}/${par}.gz)
endforeach()
add_custom_target(zuvi_empaque ALL DEPENDS ${zuvi_gz})
install(FILES ${zuvi_comprimidos}/zuvi-produccion.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${zuvi_comprimidos}/changelog.gz ${zuvi_emp}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/zuvi-produccion)

# The Debian package: cmake --build build --target package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zuvi-produccion)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Equipo ZuviProduccion <produccion@zuvi.mx>")
set(CPACK_PACKAGE_VENDOR "Zuvi")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://zuvi.mx/produccion")
# Dependencies from the shared libraries it links; what is loaded by name at
# run time (the SQL driver, the window system plugin, Qt's Spanish) is named.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, qt6-qpa-plugins, qt6-translations-l10n")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libqt6sql6-mysql")
file(READ ${zuvi_emp}/descripcion.txt CPACK_DEBIAN_PACKAGE_DESCRIPTION)
string(STRIP "${CPACK_DEBIAN_PACKAGE_DESCRIPTION}" CPACK_DEBIAN_PACKAGE_DESCRIPTION)
include(CPack)
