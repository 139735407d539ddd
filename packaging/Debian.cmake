# Two Debian packages, `sayvane` and `sayvane-service`, made by `tools/package`. What they depend on beyond
# their libraries stands in `packages`.
function(sayvane_packages variable kind)
    file(STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/packages lines REGEX "^${kind} ")
    list(TRANSFORM lines REPLACE "^${kind} " "")
    list(JOIN lines ", " joined)
    set(${variable} ${joined} PARENT_SCOPE)
endfunction()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sayvane)
set(CPACK_PACKAGE_VENDOR Sayvane)
set(CPACK_PACKAGE_CONTACT "Sayvane <support@sayvane.app>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL sayvane sayvane-service)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://sayvane.app)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

sayvane_packages(run_packages run)
sayvane_packages(recommended_packages recommend)
sayvane_packages(service_packages serve)
set(CPACK_DEBIAN_SAYVANE_PACKAGE_NAME sayvane)
set(CPACK_DEBIAN_SAYVANE_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_SAYVANE_PACKAGE_DEPENDS "${run_packages}")
set(CPACK_DEBIAN_SAYVANE_PACKAGE_RECOMMENDS "${recommended_packages}")
set(CPACK_DEBIAN_SAYVANE_PACKAGE_SUGGESTS sayvane-service)
set(CPACK_COMPONENT_SAYVANE_DESCRIPTION "dictation in any application
Tap a global shortcut, speak, and tap again: the recording is transcribed and
cleaned up, and the text lands where the cursor is, in any application.

Sayvane lives in the tray, shows a small level meter while it listens, keeps
a searchable history, and can be driven from the command line and over D-Bus.")
set(CPACK_DEBIAN_SAYVANE-SERVICE_PACKAGE_NAME sayvane-service)
set(CPACK_DEBIAN_SAYVANE-SERVICE_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SAYVANE-SERVICE_PACKAGE_DEPENDS "${service_packages}")
set(CPACK_COMPONENT_SAYVANE-SERVICE_DESCRIPTION "self-hosted dictation service
Serves the accounts, the daily allowance, transcription and cleanup that the
Sayvane dictation program uses, with an embedded recogniser or in front of
any OpenAI-compatible speech server.")

# The two files that every Debian package carries.
find_program(GZIP gzip REQUIRED)
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian
"sayvane (${PROJECT_VERSION}) unstable; urgency=medium

  * The first release.

 -- Sayvane <support@sayvane.app>  Mon, 23 Nov 2026 00:00:00 +0000
")
execute_process(COMMAND ${GZIP} -9nf ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian)
foreach(package sayvane sayvane-service)
    install(FILES debian.copyright RENAME copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${package})
    install(FILES ${changelog} RENAME changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${package})
endforeach()
# Debian keeps manual pages compressed.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/CompressManuals.cmake)
include(CPack)
