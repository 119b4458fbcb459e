# ombrelune_library(NAME SOURCES file... USES target... [LIBRARIES external...])
#
# One library of the program. USES is the whole list of our own targets that it may include; it is also
# written to layers.txt in the build folder, and a test checks every #include against it.
set_property(GLOBAL PROPERTY OMBRELUNE_LAYERS "")

function(ombrelune_layer name)
    cmake_parse_arguments(LAYER "" "" "SOURCES;USES" ${ARGN})
    foreach(file ${LAYER_SOURCES})
        cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
        cmake_path(RELATIVE_PATH file BASE_DIRECTORY ${PROJECT_SOURCE_DIR}/src)
        set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_LAYERS "file ${name} ${file}\n")
    endforeach()
    foreach(used ${LAYER_USES})
        set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_LAYERS "uses ${name} ${used}\n")
    endforeach()
endfunction()

function(ombrelune_library name)
    cmake_parse_arguments(LIB "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
    add_library(${name} STATIC ${LIB_SOURCES})
    target_link_libraries(${name} PUBLIC ${LIB_USES} PRIVATE ombrelune_flags ${LIB_LIBRARIES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    ombrelune_layer(${name} SOURCES ${LIB_SOURCES} USES ${LIB_USES})
endfunction()

# Writes what the functions above collected. Call it once, after the last library.
function(ombrelune_write_layers)
    get_property(layers GLOBAL PROPERTY OMBRELUNE_LAYERS)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/layers.txt CONTENT "${layers}" @ONLY)
endfunction()
