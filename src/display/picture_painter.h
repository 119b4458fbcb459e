// PicturePainter: draws the picture of one session over the whole screen, with even dots or as a CRT shows it.
//
// Even: each pixel of the screen gets the mean light of exactly what it covers, so that all dots are equally large at
// any size. At whole multiples that is the nearest dot. Light, not colour codes: a stroke then looks equally strong
// wherever it falls between the pixels. It counts as the square of the code, which is close to sRGB's curve; that
// itself would cost a software renderer most of its time.
//
// CRT: lines drawn by a beam that is wider where it is brighter, a slot mask as fine as the screen's pixels allow, and
// a slight glow. Nothing is clipped and no light is lost but for kCrtLight: the mean light of a picture is that part of
// its plain one's. White needs what is taken: lines and mask show only where a pixel may be brighter than its
// surroundings. To the eye white with a fifth less light is 8 percent darker (a lightness of 92 instead of 100).
//
// No moire: beam and dots are integrated over each pixel, and their light holds nothing finer than a line or a dot
// that could beat with the pixels. The mask is made of whole pixels, and every row and every column of it has the same
// mean over two triads. Lines too low for the screen's rows fade into even light.
//
// Thread: main, with the context current. Order: Start once with each context; Release before it goes.
#pragma once

#include "display/full_screen.h"
#include "display/gl_functions.h"

#include <array>
#include <cstdint>
#include <string>

inline constexpr float kCrtLight = 0.8f; // of the plain picture, at full strength

// The size of the mask's stripes and slots in pixels, for a picture of this height.
struct CRT_MASK {
    uint32_t stripe; // across; three are a triad
    uint32_t slot;   // down; half a period
};
[[nodiscard]] CRT_MASK CrtMask(uint32_t pictureHeight);

class PicturePainter {
public:
    PicturePainter() = default;
    ~PicturePainter() { Release(); }
    PicturePainter(const PicturePainter&) = delete;
    PicturePainter& operator=(const PicturePainter&) = delete;

    // False with the compiler's log in `error`, or without shaders; pictures are then drawn with the nearest dot.
    bool Start(const GL_FUNCTIONS& functions, std::string& error);
    void Release();

    // As DrawFullScreen, whose work it is with linear filtering, without shaders and at whole multiples. The filter
    // needs the machine's own dots: a picture that was enlarged by a scaler is drawn without it.
    void Draw(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view, uint32_t screenWidth,
              uint32_t screenHeight) const;

private:
    // Pixels that are no larger than a dot cover two in each direction, and larger ones up to four.
    static constexpr std::array<int, 2> kTaps = {2, 4};

    [[nodiscard]] GLuint Compile(int taps, const char* main, std::string& error) const;
    [[nodiscard]] GLuint EvenProgram(const SCREEN_QUAD& quad) const;
    void Write(GLuint program, const char* name, const std::array<float, 4>& value) const;
    void WritePlace(GLuint program, const SCREEN_QUAD& quad, const TEXTURE_RECORD& texture,
                    uint32_t screenHeight) const;
    void WriteCrt(const SESSION_PICTURE& session, const SCREEN_QUAD& quad, float strength) const;

    GL_FUNCTIONS gl;
    std::array<GLuint, kTaps.size()> even{}; // by the number of taps; 0 without shaders
    GLuint crt = 0;
};
