# Adds the font to the core; included from dewarp/CMakeLists.txt.
#
# Pixels of the built-in font: half a megabyte that packs to 21 kB. The build unpacks them and the assembler
# takes the file in as it is; neither a host tool nor an image library is needed, also when cross-compiling.
enable_language(ASM)

set(sFontArchive ${CMAKE_CURRENT_SOURCE_DIR}/tables/GPUFont.tar.xz)
set(sFontFile ${CMAKE_CURRENT_BINARY_DIR}/GPUFont.bin)
add_custom_command(
    OUTPUT ${sFontFile}
    COMMAND ${CMAKE_COMMAND} -E tar xf ${sFontArchive} --touch
    DEPENDS ${sFontArchive}
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    COMMENT "Unpacking the font"
    VERBATIM)
set_source_files_properties(tables/GPUFontPixels.S PROPERTIES
    OBJECT_DEPENDS ${sFontFile}
    COMPILE_DEFINITIONS "GPU_FONT_FILE=\"${sFontFile}\"")
target_sources(lumor_dewarp_core_objects PRIVATE tables/GPUFont.cpp tables/GPUFontPixels.S)
