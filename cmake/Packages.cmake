# SPDX-License-Identifier: GPL-3.0-or-later
# What `cmake --install` puts where, and the packages that `cpack` makes of it: a .deb and a tar.gz
# for Linux, an installer and a zip for Windows.
include(GNUInstallDirs)

if(WIN32)
    set(default_vst2_folder .)
    set(document_folder .)
else()
    set(default_vst2_folder ${CMAKE_INSTALL_LIBDIR}/vst)
    if(CMAKE_INSTALL_LIBDIR MATCHES "/")
        set(default_vst2_folder lib/vst)  # hosts look there, whatever the machine's own layout
    endif()
    set(document_folder ${CMAKE_INSTALL_DATADIR}/doc/kestrune)
endif()
set(KESTRUNE_VST2_FOLDER ${default_vst2_folder} CACHE STRING
    "Where the VST 2.4 plug-in goes, below the prefix; with the prefix ~ this is .vst")

install(TARGETS Kestrune
    LIBRARY DESTINATION ${KESTRUNE_VST2_FOLDER}
    RUNTIME DESTINATION ${KESTRUNE_VST2_FOLDER})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${document_folder} RENAME LICENSE.txt)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/docs/parameters.md
    DESTINATION ${document_folder})

set(CPACK_PACKAGE_NAME kestrune)
set(CPACK_PACKAGE_VENDOR Vornhal)
set(CPACK_PACKAGE_CONTACT "Vornhal <kestrune@vornhal.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Multiband two-tap delay, an audio plug-in")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
    # Stripping writes the time of day into a library, so that two packages would hold two of them.
    # The linker does it instead: all packages hold the one that was built and tested.
    set(CPACK_STRIP_FILES OFF)
    target_link_options(Kestrune PRIVATE LINKER:--strip-all LINKER:--no-insert-timestamp)
    set(CPACK_GENERATOR ZIP NSIS)
    set(CPACK_PACKAGE_FILE_NAME kestrune-${PROJECT_VERSION}-windows-x86_64)
    set(CPACK_PACKAGE_INSTALL_DIRECTORY Kestrune)
    set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64\\VSTPlugins")
    set(CPACK_NSIS_DEFINES "Target amd64-unicode")  # a 64-bit program like what it installs
    set(CPACK_NSIS_DISPLAY_NAME Kestrune)
    set(CPACK_NSIS_PACKAGE_NAME Kestrune)
    set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
    set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
else()
    set(CPACK_STRIP_FILES ON)
    set(CPACK_GENERATOR TGZ DEB)
    set(CPACK_PACKAGE_FILE_NAME kestrune-${PROJECT_VERSION}-linux-x86_64)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SECTION sound)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()
include(CPack)
