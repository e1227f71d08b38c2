# What is installed, in three components: the tool, the library, and what programs that link it need.
include(CMakePackageConfigHelpers)

set(cmake_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KelvarisSDK)

# Each shell looks for a completion script in a folder and under a name of its own.
function(install_completions program component)
    set(scripts ${CMAKE_BINARY_DIR}/completions)
    install(FILES ${scripts}/${program}.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program} COMPONENT ${component})
    install(FILES ${scripts}/${program}.zsh
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions RENAME _${program} COMPONENT ${component})
    install(FILES ${scripts}/${program}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT ${component})
endfunction()

install(TARGETS sdkcli RUNTIME COMPONENT cli)
install(FILES docs/sdkcli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT cli)
install_completions(sdkcli cli)

install(TARGETS kelvarissdk EXPORT KelvarisSDK
    LIBRARY COMPONENT lib NAMELINK_COMPONENT dev
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY sdklibrary/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(EXPORT KelvarisSDK NAMESPACE KelvarisSDK::
    FILE KelvarisSDKConfig.cmake DESTINATION ${cmake_package_dir} COMPONENT dev)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/KelvarisSDKConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KelvarisSDKConfigVersion.cmake
    DESTINATION ${cmake_package_dir} COMPONENT dev)
# The .pc file finds the tree from where it stands itself, so that the tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pc_to_prefix)
configure_file(cmake/kelvarissdk.pc.in kelvarissdk.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kelvarissdk.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libkelvarissdk-dev/examples COMPONENT dev)
if(TARGET kelvarissim)
    install(TARGETS kelvarissim RUNTIME COMPONENT dev)
    install(FILES docs/kelvarissim.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT dev)
    install_completions(kelvarissim dev)
endif()

# One Debian package a component: cpack -G DEB in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvaris)
set(CPACK_PACKAGE_VENDOR Kelvaris)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # or it would stand above each package's own line
set(CPACK_PACKAGE_CONTACT "Kelvaris maintainers <maintainers@kelvaris.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL cli lib dev)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KELVARIS_BUILD})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
if(HAS_PACKED_RELOCATIONS)
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.36)") # the first that reads them, which the symbols don't tell
endif()

set(own_version "${PROJECT_VERSION}-${KELVARIS_BUILD}")
set(CPACK_DEBIAN_CLI_PACKAGE_NAME kelvaris-cli)
set(CPACK_DEBIAN_CLI_PACKAGE_SECTION net)
set(CPACK_DEBIAN_CLI_PACKAGE_SUGGESTS bash-completion)
set(CPACK_COMPONENT_CLI_DESCRIPTION "Command-line client of the Kelvaris VPN daemon")
set(CPACK_DEBIAN_LIB_PACKAGE_NAME libkelvarissdk${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIB_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIB_DESCRIPTION "Client library of the Kelvaris VPN daemon")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkelvarissdk-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "libkelvarissdk${PROJECT_VERSION_MAJOR} (= ${own_version})" ${CPACK_DEBIAN_PACKAGE_DEPENDS})
list(JOIN CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ", " CPACK_DEBIAN_DEV_PACKAGE_DEPENDS)
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "Client library of the Kelvaris VPN daemon: headers, simulated daemon, examples")
include(CPack)
