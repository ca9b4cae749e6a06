# The program's icon, version and manifest.
enable_language(RC)
if(MSVC)
    # the linker merges the manifest itself
    set(manifest_line "")
    target_sources(orvane PRIVATE resources/windows/orvane.manifest)
else()
    set(manifest_line "1 RT_MANIFEST \"${CMAKE_SOURCE_DIR}/resources/windows/orvane.manifest\"")
endif()
configure_file(resources/windows/orvane.rc.in ${CMAKE_BINARY_DIR}/orvane.rc @ONLY)
target_sources(orvane PRIVATE ${CMAKE_BINARY_DIR}/orvane.rc)
set_source_files_properties(${CMAKE_BINARY_DIR}/orvane.rc PROPERTIES OBJECT_DEPENDS
    "${CMAKE_SOURCE_DIR}/resources/windows/orvane.manifest;${CMAKE_SOURCE_DIR}/resources/icons/orvane.ico")
