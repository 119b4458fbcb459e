# How the images, fonts and the theme get into the program.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)

# Pixels to a unit, enough for the densest display: kImagePixelsPerUnit in src/gui/bitmap.h. The picture behind all
# screens has what a screen of 3840 pixels shows; the logo is good at 400 units on a display of two pixels to a unit.
set(OMBRELUNE_IMAGE_SCALE 4)
set(OMBRELUNE_IMAGE_SCALE_mainbg 3)
set(OMBRELUNE_IMAGE_SCALE_ombrelune_logo 20)

# Embeds a file under a symbol; the object goes to the list of the target `assets`.
function(ombrelune_asset symbol file)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp)
    add_custom_command(OUTPUT ${source}
        COMMAND ${CMAKE_COMMAND} -DIMAGE=${file} -DSOURCE=${source} -DSYMBOL=${symbol}
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake
        DEPENDS ${file} ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake VERBATIM)
    set_property(GLOBAL APPEND PROPERTY OMBRELUNE_ASSET_SOURCES ${source})
    set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_ASSET_EXTERNS
        "extern const unsigned char ${symbol}[];\nextern const unsigned long ${symbol}_size;\n")
endfunction()

# ombrelune_images(NAME...): images/NAME.svg, each a row named after it in capitals.
function(ombrelune_images)
    foreach(name ${ARGN})
        set(drawing ${CMAKE_CURRENT_SOURCE_DIR}/images/${name}.svg)
        set(image ${CMAKE_CURRENT_BINARY_DIR}/${name}.png)
        set(scale ${OMBRELUNE_IMAGE_SCALE})
        if(OMBRELUNE_IMAGE_SCALE_${name})
            set(scale ${OMBRELUNE_IMAGE_SCALE_${name}})
        endif()
        add_custom_command(OUTPUT ${image}
            COMMAND ${RSVG_CONVERT} --zoom ${scale} --output ${image} ${drawing}
            DEPENDS ${drawing} VERBATIM)
        ombrelune_asset(gImage_${name} ${image})
        string(TOUPPER ${name} row)
        set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_IMAGE_ROWS
            "        {\"#${row}\", {gImage_${name}, gImage_${name}_size}, ${scale}},\n")
    endforeach()
endfunction()

# ombrelune_font(NAME file): a font of a Debian package, as the theme names it.
function(ombrelune_font name file)
    if(NOT EXISTS ${file})
        message(FATAL_ERROR "${file} is missing; tools/packages.sh names its package")
    endif()
    ombrelune_asset(gFont_${name} ${file})
    set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_FONT_ROWS
        "        {\"${name}\", {gFont_${name}, gFont_${name}_size}},\n")
endfunction()

# ombrelune_files(TABLE folder): every file in it, by its name, as rows of that table. They are megabytes, which a
# compiler takes long to read as numbers, so the assembler copies them in.
function(ombrelune_files table folder)
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.3ds
        ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.jpg ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.png
        ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.txt)
    foreach(file ${files})
        get_filename_component(name ${file} NAME)
        string(MAKE_C_IDENTIFIER g${table}_${name} symbol)
        set(source ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp)
        file(CONFIGURE OUTPUT ${source} @ONLY CONTENT [[
#ifdef __APPLE__
#define SECTION ".const_data"
#define NAME "_@symbol@"
#else
#define SECTION ".section .rodata"
#define NAME "@symbol@"
#endif
asm(SECTION "\n.globl " NAME "\n.balign 16\n" NAME ":\n.incbin \"@file@\"\n"
    ".globl " NAME "_end\n" NAME "_end:\n.byte 0\n.text\n");
]])
        set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS ${file})
        set_property(GLOBAL APPEND PROPERTY OMBRELUNE_ASSET_SOURCES ${source})
        set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_ASSET_EXTERNS
            "extern const unsigned char ${symbol}[];\nextern const unsigned char ${symbol}_end[];\n")
        set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_${table}_ROWS
            "        {\"${name}\", {${symbol}, ${symbol}_end}},\n")
    endforeach()
endfunction()

# ombrelune_embed_assets(theme): to be called once, after all images and fonts; makes the target `assets`.
function(ombrelune_embed_assets theme)
    ombrelune_asset(gTheme ${CMAKE_CURRENT_SOURCE_DIR}/${theme})
    foreach(list ASSET_SOURCES ASSET_EXTERNS IMAGE_ROWS FONT_ROWS OBJECT_ROWS MEDIA_ROWS)
        get_property(${list} GLOBAL PROPERTY OMBRELUNE_${list})
    endforeach()
    configure_file(assets.cpp.in ${CMAKE_CURRENT_BINARY_DIR}/assets.cpp @ONLY)
    add_library(assets STATIC ${CMAKE_CURRENT_BINARY_DIR}/assets.cpp ${ASSET_SOURCES})
    target_link_libraries(assets PUBLIC gui PRIVATE ombrelune_flags)
    target_include_directories(assets PUBLIC ${PROJECT_SOURCE_DIR}/src)
    ombrelune_layer(assets SOURCES ${PROJECT_SOURCE_DIR}/src/front/assets.h USES gui)
endfunction()
