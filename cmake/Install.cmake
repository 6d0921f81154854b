# What cmake --install gives: headers, library, tool, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS lumor_dewarp EXPORT lumor_dewarp_targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# install_headers(FOLDER HEADER...): headers below the folder, each in the folder that it has there.
function(install_headers sFolder)
    foreach(sHeader ${ARGN})
        cmake_path(GET sHeader PARENT_PATH sRoom)
        install(FILES ${sFolder}/${sHeader} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lumor_dewarp/${sRoom})
    endforeach()
endfunction()
include(PublicHeaders)
install_headers(${PROJECT_SOURCE_DIR} ${LUMOR_PUBLIC_HEADERS})
if(NOT ANDROID)
    install_headers(${PROJECT_SOURCE_DIR}/platform/linux/include ${LUMOR_STAND_IN_HEADERS})
endif()

if(LUMOR_BUILD_TOOLS)
    # The tool finds the library beside its own folder, wherever both are moved to.
    file(RELATIVE_PATH sToLibrary ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(lumor-dewarp PROPERTIES INSTALL_RPATH "$ORIGIN/${sToLibrary}")
    install(TARGETS lumor-dewarp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(sPackageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/lumor_dewarp)
install(EXPORT lumor_dewarp_targets NAMESPACE lumor_dewarp:: DESTINATION ${sPackageFolder})
configure_package_config_file(cmake/lumor_dewarpConfig.cmake.in
    ${PROJECT_BINARY_DIR}/lumor_dewarpConfig.cmake INSTALL_DESTINATION ${sPackageFolder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumor_dewarpConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumor_dewarpConfig.cmake
    ${PROJECT_BINARY_DIR}/lumor_dewarpConfigVersion.cmake DESTINATION ${sPackageFolder})

# The file lies two folders below the prefix or deeper (lib/x86_64-linux-gnu/pkgconfig): it finds the prefix
# from its own place, so that an installed tree may be moved.
file(RELATIVE_PATH sToPrefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
# A static library brings none of what it was linked with.
set(sStaticLibraries "")
if(NOT LUMOR_BUILD_SHARED)
    set(sStaticLibraries " -lstdc++ -lm")
endif()
configure_file(cmake/lumor_dewarp.pc.in ${PROJECT_BINARY_DIR}/lumor_dewarp.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumor_dewarp.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
