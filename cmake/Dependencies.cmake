# The libraries that the program calls. All come from Debian; tools/packages lists their packages.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(CLI11 REQUIRED)
find_package(PNG REQUIRED)
find_package(OpenGL REQUIRED)
pkg_check_modules(TINYXML REQUIRED IMPORTED_TARGET tinyxml)
# For tests and benchmarks alone, as a second opinion on the resampler.
pkg_check_modules(SAMPLERATE REQUIRED IMPORTED_TARGET samplerate)
pkg_check_modules(OPENAL REQUIRED IMPORTED_TARGET openal)
pkg_check_modules(SDL2 REQUIRED IMPORTED_TARGET sdl2)
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)

# The LZMA SDK's one-call encoder and decoder. Debian ships the sources, to be compiled with the
# program that uses them; _7ZIP_ST leaves out the threaded match finder.
find_path(LZMA_SDK_FOLDER NAMES LzmaEnc.c PATH_SUFFIXES lzma REQUIRED)
add_library(lzma_sdk STATIC
    ${LZMA_SDK_FOLDER}/LzFind.c ${LZMA_SDK_FOLDER}/LzmaDec.c ${LZMA_SDK_FOLDER}/LzmaEnc.c)
target_include_directories(lzma_sdk SYSTEM INTERFACE ${LZMA_SDK_FOLDER})
target_compile_definitions(lzma_sdk PUBLIC _7ZIP_ST)
target_compile_options(lzma_sdk PRIVATE -w)
