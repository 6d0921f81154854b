# What cmake --install gives: headers, library, tool, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

# The core in a set of its own: a host that takes nothing else needs no OpenGL ES to be there.
install(TARGETS lumor_dewarp_core EXPORT lumor_dewarp_core_targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(LUMOR_BUILD_SHARED AND NOT ANDROID)
    # Linkers take no names from libraries behind the one that they are given. So what they find under its name is
    # a line that hands them both; the library itself has its number in its name.
    install(TARGETS lumor_dewarp EXPORT lumor_dewarp_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/namelink/liblumor_dewarp.so @ONLY CONTENT
        "/* Both libraries of lumor_dewarp, for the linker. */
INPUT(liblumor_dewarp.so.0 AS_NEEDED(liblumor_dewarp_core.so.0))
")
    install(FILES ${PROJECT_BINARY_DIR}/namelink/liblumor_dewarp.so DESTINATION ${CMAKE_INSTALL_LIBDIR})
else()
    install(TARGETS lumor_dewarp EXPORT lumor_dewarp_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

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
    # The tool finds the library beside its own folder, and what it loads in a folder there (tools/), wherever all are
    # moved to.
    file(RELATIVE_PATH sToLibrary ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(lumor-dewarp PROPERTIES INSTALL_RPATH "$ORIGIN/${sToLibrary}")
    install(TARGETS lumor-dewarp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(TARGET lumor_dewarp_buffers)
        set_target_properties(lumor_dewarp_buffers PROPERTIES INSTALL_RPATH "$ORIGIN/..")
        install(TARGETS lumor_dewarp_buffers LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/lumor_dewarp)
    endif()
endif()

set(sPackageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/lumor_dewarp)
foreach(sTargets lumor_dewarp_core_targets lumor_dewarp_targets)
    install(EXPORT ${sTargets} NAMESPACE lumor_dewarp:: DESTINATION ${sPackageFolder})
endforeach()
configure_package_config_file(cmake/lumor_dewarpConfig.cmake.in
    ${PROJECT_BINARY_DIR}/lumor_dewarpConfig.cmake INSTALL_DESTINATION ${sPackageFolder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumor_dewarpConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumor_dewarpConfig.cmake
    ${PROJECT_BINARY_DIR}/lumor_dewarpConfigVersion.cmake DESTINATION ${sPackageFolder})

# The files lie two folders below the prefix or deeper (lib/x86_64-linux-gnu/pkgconfig): they find the prefix
# from their own place, so that an installed tree may be moved.
file(RELATIVE_PATH sToPrefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
# A static library brings none of what it was linked with, and holds the core itself.
set(sStaticLibraries "")
set(sCorePackage "lumor_dewarp_core ")
if(NOT LUMOR_BUILD_SHARED)
    set(sStaticLibraries " -lstdc++ -lm -lpthread -ldl")
    set(sCorePackage "")
endif()
foreach(sPackage lumor_dewarp_core lumor_dewarp)
    configure_file(cmake/${sPackage}.pc.in ${PROJECT_BINARY_DIR}/${sPackage}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${sPackage}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
