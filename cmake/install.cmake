# What is installed, in five components: the tool, the library, what programs that link it need, the monitor, and the
# simulated daemon.
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
# It differs between machines, as the library does.
install(FILES ${CMAKE_BINARY_DIR}/kelvarissdk-abi.json DESTINATION ${CMAKE_INSTALL_LIBDIR}/kelvarissdk COMPONENT dev)
# The .pc file finds the tree from where it stands itself, so that the tree can be moved. In the system's own tree it
# names no folders: every compiler searches them, and a flag would put them in front of the folders of the program.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(pc_prefix /usr)
    set(pc_libs -lkelvarissdk)
    set(pc_cflags)
else()
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
        BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pc_to_prefix)
    set(pc_prefix "\${pcfiledir}/${pc_to_prefix}")
    set(pc_libs "-L\${libdir} -lkelvarissdk")
    set(pc_cflags " -I\${includedir}")
endif()
configure_file(cmake/kelvarissdk.pc.in kelvarissdk.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kelvarissdk.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libkelvarissdk-dev/examples COMPONENT dev)
if(TARGET kelvaris-monitor)
    install(TARGETS kelvaris-monitor RUNTIME COMPONENT monitor)
    install(FILES docs/kelvaris-monitor.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT monitor)
    install_completions(kelvaris-monitor monitor)
endif()
if(TARGET kelvarissim)
    install(TARGETS kelvarissim RUNTIME COMPONENT simulator)
    install(FILES docs/kelvarissim.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT simulator)
    install_completions(kelvarissim simulator)
endif()
