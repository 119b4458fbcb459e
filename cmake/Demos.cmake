# Our own games and demos: assembled and compiled from source by the ordinary build, and embedded in
# the program.

find_program(SDASZ80 sdasz80 REQUIRED)
find_program(SDCC sdcc REQUIRED)
find_program(MAKEBIN makebin REQUIRED)
find_program(CA65 ca65 REQUIRED)
find_program(CC65 cc65 REQUIRED)
find_program(LD65 ld65 REQUIRED)
find_program(M68K_AS m68k-linux-gnu-as REQUIRED)
find_program(M68K_LD m68k-linux-gnu-ld REQUIRED)
find_program(M68K_OBJCOPY m68k-linux-gnu-objcopy REQUIRED)

# ombrelune_tables(folder variable file...)
#
# Converts pictures, sheets, scores and sounds (demos/README.md) to tables: each FILE.* to FOLDER/FILE.inc, and a
# picture to FOLDER/FILE_count.inc too. Sets the variable to the list of products.
function(ombrelune_tables folder variable)
    set(tables "")
    foreach(source ${ARGN})
        get_filename_component(stem ${source} NAME_WE)
        get_filename_component(extension ${source} EXT)
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
        set(products ${folder}/${stem}.inc)
        if(extension STREQUAL ".png")
            list(APPEND products ${folder}/${stem}_count.inc)
        endif()
        # The depfile lists the picture that a sheet reads.
        add_custom_command(OUTPUT ${products}
            COMMAND demo_tables ${source} ${folder}/${stem}.inc
            DEPENDS demo_tables ${source} DEPFILE ${folder}/${stem}.inc.d VERBATIM)
        list(APPEND tables ${products})
    endforeach()
    set(${variable} ${tables} PARENT_SCOPE)
endfunction()

# ombrelune_z80_rom(NAME name SIZE bytes SOURCES file... [DEPENDS file...] [TABLES file...] [FLAGS flag...])
#
# Builds ${CMAKE_CURRENT_BINARY_DIR}/NAME.rom, SIZE bytes of a Z80 program: code from address 0, data
# from 0xC000. The first source is linked first and holds the reset vector. Sources are assembly (.s,
# sdasz80) or C (.c, sdcc, without its start code). DEPENDS are included files. TABLES are converted to tables for
# the sources to include: x.png, x.sheet or x.score becomes "x.inc".
function(ombrelune_z80_rom)
    cmake_parse_arguments(ROM "" "NAME;SIZE" "SOURCES;DEPENDS;TABLES;FLAGS" ${ARGN})
    set(objects "")
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${ROM_NAME}.dir)
    file(MAKE_DIRECTORY ${folder})
    list(TRANSFORM ROM_DEPENDS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    ombrelune_tables(${folder} tables ${ROM_TABLES})
    list(APPEND ROM_DEPENDS ${tables})
    foreach(source ${ROM_SOURCES})
        get_filename_component(stem ${source} NAME_WE)
        get_filename_component(extension ${source} EXT)
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        set(object ${folder}/${stem}.rel)
        if(extension STREQUAL ".s")
            set(command ${SDASZ80} -l -o -s -g -I${CMAKE_CURRENT_SOURCE_DIR} -I${folder} ${object} ${source})
        else()
            set(command ${SDCC} -mz80 --std-c11 --opt-code-speed -I${CMAKE_CURRENT_SOURCE_DIR} -I${folder}
                ${ROM_FLAGS} -c -o ${object} ${source})
        endif()
        add_custom_command(OUTPUT ${object} COMMAND ${command} DEPENDS ${source} ${ROM_DEPENDS}
            WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} VERBATIM)
        list(APPEND objects ${object})
    endforeach()
    set(image ${CMAKE_CURRENT_BINARY_DIR}/${ROM_NAME}.rom)
    add_custom_command(OUTPUT ${image}
        COMMAND ${SDCC} -mz80 --no-std-crt0 --code-loc 0x0000 --data-loc 0xC000
            -o ${folder}/${ROM_NAME}.ihx ${objects}
        COMMAND ${MAKEBIN} -s ${ROM_SIZE} ${folder}/${ROM_NAME}.ihx ${image}
        DEPENDS ${objects} VERBATIM)
endfunction()

# ombrelune_nes_rom(NAME name CONFIG file SOURCES file... [DEPENDS file...] [TABLES file...])
#
# Builds ${CMAKE_CURRENT_BINARY_DIR}/NAME.rom, an NES cartridge whose header is in the sources, laid out by the
# linker's CONFIG. Sources are assembly (.s, ca65) or C (.c, cc65 with its arithmetic helpers, but without start
# code or a machine's library). DEPENDS and TABLES are as above.
function(ombrelune_nes_rom)
    cmake_parse_arguments(ROM "" "NAME;CONFIG" "SOURCES;DEPENDS;TABLES" ${ARGN})
    set(objects "")
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${ROM_NAME}.dir)
    file(MAKE_DIRECTORY ${folder})
    list(TRANSFORM ROM_DEPENDS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    ombrelune_tables(${folder} tables ${ROM_TABLES})
    list(APPEND ROM_DEPENDS ${tables})
    foreach(source ${ROM_SOURCES})
        get_filename_component(stem ${source} NAME_WE)
        get_filename_component(extension ${source} EXT)
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        set(object ${folder}/${stem}.o)
        set(command ${CA65} -t none -I ${CMAKE_CURRENT_SOURCE_DIR} -I ${folder} -o ${object})
        if(extension STREQUAL ".s")
            add_custom_command(OUTPUT ${object} COMMAND ${command} ${source}
                DEPENDS ${source} ${ROM_DEPENDS} VERBATIM)
        else()
            add_custom_command(OUTPUT ${object}
                COMMAND ${CC65} -t none -Oirs -I ${CMAKE_CURRENT_SOURCE_DIR} -I ${folder} -o ${folder}/${stem}.s ${source}
                COMMAND ${command} ${folder}/${stem}.s
                DEPENDS ${source} ${ROM_DEPENDS} VERBATIM)
        endif()
        list(APPEND objects ${object})
    endforeach()
    cmake_path(ABSOLUTE_PATH ROM_CONFIG BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    set(image ${CMAKE_CURRENT_BINARY_DIR}/${ROM_NAME}.rom)
    add_custom_command(OUTPUT ${image}
        COMMAND ${LD65} -C ${ROM_CONFIG} -o ${image} -m ${folder}/${ROM_NAME}.map ${objects} none.lib
        DEPENDS ${objects} ${ROM_CONFIG} VERBATIM)
endfunction()

# ombrelune_md_rom(NAME name CONFIG file SOURCES file... [DEPENDS file...] [TABLES file...]
#                  [Z80 file...])
#
# Builds ${CMAKE_CURRENT_BINARY_DIR}/NAME.rom, a Mega Drive cartridge of 68000 assembly (.s, GNU as),
# laid out by the linker script CONFIG. The files of Z80 (.s, sdasz80; the first is linked first, at
# address 0) become a program of at most 8 KiB in ${CMAKE_CURRENT_BINARY_DIR}/NAME.dir/z80.bin, which the
# sources include with .incbin "z80.bin". DEPENDS and TABLES are as above.
function(ombrelune_md_rom)
    cmake_parse_arguments(ROM "" "NAME;CONFIG" "SOURCES;DEPENDS;TABLES;Z80" ${ARGN})
    set(objects "")
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${ROM_NAME}.dir)
    file(MAKE_DIRECTORY ${folder})
    list(TRANSFORM ROM_DEPENDS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    ombrelune_tables(${folder} tables ${ROM_TABLES})
    list(APPEND ROM_DEPENDS ${tables})
    set(z80_objects "")
    foreach(source ${ROM_Z80})
        get_filename_component(stem ${source} NAME_WE)
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        add_custom_command(OUTPUT ${folder}/${stem}.rel
            COMMAND ${SDASZ80} -l -o -s -g -I${CMAKE_CURRENT_SOURCE_DIR} -I${folder} ${folder}/${stem}.rel ${source}
            DEPENDS ${source} ${ROM_DEPENDS}
            WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} VERBATIM)
        list(APPEND z80_objects ${folder}/${stem}.rel)
    endforeach()
    if(z80_objects)
        add_custom_command(OUTPUT ${folder}/z80.bin
            COMMAND ${SDCC} -mz80 --no-std-crt0 --code-loc 0x0000 --data-loc 0x1C00
                -o ${folder}/z80.ihx ${z80_objects}
            COMMAND ${MAKEBIN} -s 8192 ${folder}/z80.ihx ${folder}/z80.bin
            DEPENDS ${z80_objects} VERBATIM)
        list(APPEND ROM_DEPENDS ${folder}/z80.bin)
    endif()
    foreach(source ${ROM_SOURCES})
        get_filename_component(stem ${source} NAME_WE)
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        add_custom_command(OUTPUT ${folder}/${stem}.o
            COMMAND ${M68K_AS} -m68000 --register-prefix-optional --fatal-warnings
                -I ${CMAKE_CURRENT_SOURCE_DIR} -I ${folder} -o ${folder}/${stem}.o ${source}
            DEPENDS ${source} ${ROM_DEPENDS} VERBATIM)
        list(APPEND objects ${folder}/${stem}.o)
    endforeach()
    cmake_path(ABSOLUTE_PATH ROM_CONFIG BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    set(image ${CMAKE_CURRENT_BINARY_DIR}/${ROM_NAME}.rom)
    add_custom_command(OUTPUT ${image}
        COMMAND ${M68K_LD} -T ${ROM_CONFIG} -o ${folder}/${ROM_NAME}.elf ${objects}
        COMMAND ${M68K_OBJCOPY} -O binary ${folder}/${ROM_NAME}.elf ${image}
        DEPENDS ${objects} ${ROM_CONFIG} VERBATIM)
endfunction()

# ombrelune_demo(NAME name SYSTEM number TITLE text REGIONS letters PLAY number [TEST] ROM file)
#
# Embeds an image: `demo:NAME` on the command line plays it. REGIONS are those whose consoles it runs on, letters of
# EJUBK; PLAY is the sum of 1 for one player, 2 for players together, 4 for one against the other, 8 for taking turns.
# TEST is a test card or a benchmark, which lists have after the games.
function(ombrelune_demo)
    cmake_parse_arguments(DEMO "TEST" "NAME;SYSTEM;TITLE;REGIONS;PLAY;ROM" "" ${ARGN})
    string(MAKE_C_IDENTIFIER ${DEMO_NAME} identifier)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${DEMO_NAME}.cpp)
    add_custom_command(OUTPUT ${source}
        COMMAND ${CMAKE_COMMAND} -DIMAGE=${DEMO_ROM} -DSOURCE=${source} -DSYMBOL=gDemo_${identifier}
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake
        DEPENDS ${DEMO_ROM} ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake VERBATIM)
    # The target must be in the folder of its rules; the list is built in another folder.
    add_library(demo-${DEMO_NAME} OBJECT ${source})
    set_property(GLOBAL APPEND PROPERTY OMBRELUNE_DEMO_OBJECTS $<TARGET_OBJECTS:demo-${DEMO_NAME}>)
    set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_DEMO_EXTERNS
        "extern const unsigned char gDemo_${identifier}[];\nextern const unsigned long gDemo_${identifier}_size;\n")
    string(TOLOWER ${DEMO_TEST} is_test)
    set_property(GLOBAL APPEND_STRING PROPERTY OMBRELUNE_DEMO_ROWS
        "    {\"${DEMO_NAME}\", \"${DEMO_TITLE}\", ${DEMO_SYSTEM}, \"${DEMO_REGIONS}\", ${DEMO_PLAY}, {gDemo_${identifier}, gDemo_${identifier}_size}, ${is_test}},\n")
endfunction()

# Makes the target `demos`. Call it once, in the demos' folder, after the last of them.
function(ombrelune_embed_demos)
    get_property(objects GLOBAL PROPERTY OMBRELUNE_DEMO_OBJECTS)
    get_property(DEMO_EXTERNS GLOBAL PROPERTY OMBRELUNE_DEMO_EXTERNS)
    get_property(DEMO_ROWS GLOBAL PROPERTY OMBRELUNE_DEMO_ROWS)
    configure_file(demos.cpp.in ${CMAKE_CURRENT_BINARY_DIR}/demos.cpp @ONLY)
    add_library(demos STATIC ${CMAKE_CURRENT_BINARY_DIR}/demos.cpp ${objects})
    target_link_libraries(demos PRIVATE ombrelune_flags)
    target_include_directories(demos PUBLIC ${PROJECT_SOURCE_DIR}/src)
    ombrelune_layer(demos SOURCES ${PROJECT_SOURCE_DIR}/src/front/demos.h)
endfunction()
