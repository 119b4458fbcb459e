#include "display/picture_painter.h"

#include "display/gl.h"
#include "display/picture_glow.h"
#include "display/picture_painter_text.h"
#include "display/shader_program.h"

#include <algorithm>

namespace {

// Lines. The beam with all its light is so wide that the light does not exceed white: kCrtLight / kWidestBeam is below
// 1, and what is left is for the mask.
constexpr float kNarrowestBeam = 0.55f;
constexpr float kWidestBeam = 0.9f;
constexpr float kEvenBeam = 1.0f; // lines of equal light then leave no gap
static_assert(kCrtLight < kWidestBeam);

constexpr float kLinesShow = 3.0f; // pixels a line from which the beam is as narrow as it can be
constexpr float kLinesFade = 2.0f; // and at which it is even

constexpr float kGlowPart = 0.04f;
constexpr float kStripeDepth = 0.45f;
constexpr float kSlotDepth = 0.15f;
constexpr uint32_t kRowsOfStripe = 1080; // rows of the picture for each pixel of a stripe's width
constexpr uint32_t kSlotOfStripe = 4;

constexpr GLenum kGlowUnit = GL_TEXTURE1;

float DotsAcross(const SCREEN_QUAD& quad) {
    return static_cast<float>(quad.areaWidth) / static_cast<float>(quad.width);
}

float DotsDown(const SCREEN_QUAD& quad) {
    return static_cast<float>(quad.areaHeight) / static_cast<float>(quad.height);
}

bool IsWholeMultiple(const SCREEN_QUAD& quad) {
    return quad.width % quad.areaWidth == 0 && quad.height % quad.areaHeight == 0;
}

float BeamReach(float reach, float rowsOfLine) {
    const float shows =
        std::clamp((rowsOfLine - kLinesFade) / (kLinesShow - kLinesFade), 0.0f, 1.0f);
    return kEvenBeam + (reach - kEvenBeam) * shows;
}

} // namespace

CRT_MASK CrtMask(uint32_t pictureHeight) {
    const uint32_t stripe = std::max((pictureHeight + kRowsOfStripe / 2) / kRowsOfStripe, 1U);
    return {stripe, stripe * kSlotOfStripe};
}

bool PicturePainter::Start(const GL_FUNCTIONS& functions, std::string& error) {
    Release();
    gl = functions;
    error.clear();
    if (gl.useProgram == nullptr) {
        return false;
    }
    for (size_t i = 0; i < kTaps.size(); ++i) {
        even[i] = Compile(kTaps[i], kEvenMain, error);
        if (even[i] == 0) {
            Release();
            return false;
        }
    }
    if (gl.activeTexture != nullptr) {
        crt = Compile(kTaps.front(), kCrtMain, error);
    }
    return error.empty();
}

GLuint PicturePainter::Compile(int taps, const char* main, std::string& error) const {
    const std::string text =
        "#version 120\n#define TAPS " + std::to_string(taps) + "\n" + kPictureHead + main;
    return CompileProgram(gl, kPictureVertexText, text, "the shader of a game's picture", error);
}

void PicturePainter::Release() {
    for (GLuint* const program : {&even[0], &even[1], &crt}) {
        if (*program != 0 && gl.deleteProgram != nullptr) {
            gl.deleteProgram(*program);
        }
        *program = 0;
    }
}

// 0 if a pixel covers more dots than the shaders count.
GLuint PicturePainter::EvenProgram(const SCREEN_QUAD& quad) const {
    const float most = std::max(DotsAcross(quad), DotsDown(quad));
    for (size_t i = 0; i < kTaps.size(); ++i) {
        if (most <= static_cast<float>(kTaps[i] - 1)) {
            return even[i];
        }
    }
    return 0;
}

void PicturePainter::Draw(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view,
                          uint32_t screenWidth, uint32_t screenHeight) const {
    const SCREEN_QUAD quad = PlaceFullScreen(session, view, screenWidth, screenHeight);
    if (session.texture.glTexture == 0 || quad.width == 0) {
        DrawFullScreen(session, view, screenWidth, screenHeight);
        return;
    }
    const bool enlarges = DotsAcross(quad) <= 1.0f && DotsDown(quad) <= 1.0f;
    const bool asCrt = view.crtStrength > 0.0f && crt != 0 && session.factor == 1 && enlarges;
    const GLuint program = asCrt ? crt : EvenProgram(quad);
    if (!asCrt && (view.linear || IsWholeMultiple(quad) || program == 0)) {
        FULL_SCREEN_VIEW plain = view;
        plain.linear = view.linear || (even[0] != 0 && !IsWholeMultiple(quad)); // far too small
        DrawFullScreen(session, plain, screenWidth, screenHeight);
        return;
    }
    Ortho2D(screenWidth, screenHeight);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    gl.useProgram(program);
    glBindTexture(GL_TEXTURE_2D, session.texture.glTexture);
    SetTextureFilter(TextureFilter::kNearest);
    WritePlace(program, quad, session.texture, screenHeight);
    if (asCrt) {
        WriteCrt(session, quad, std::min(view.crtStrength, 1.0f));
    }
    DrawQuad(quad);
    gl.useProgram(0);
}

void PicturePainter::Write(GLuint program, const char* name,
                           const std::array<float, 4>& value) const {
    gl.uniform4f(gl.getUniformLocation(program, name), value[0], value[1], value[2], value[3]);
}

void PicturePainter::WritePlace(GLuint program, const SCREEN_QUAD& quad,
                                const TEXTURE_RECORD& texture, uint32_t screenHeight) const {
    gl.uniform1i(gl.getUniformLocation(program, "picture"), 0);
    Write(program, "place",
          {static_cast<float>(quad.left), static_cast<float>(screenHeight - quad.top),
           DotsAcross(quad), DotsDown(quad)});
    Write(program, "area",
          {static_cast<float>(quad.areaX), static_cast<float>(quad.areaY),
           1.0f / static_cast<float>(texture.texWidth),
           1.0f / static_cast<float>(texture.texHeight)});
    Write(program, "last",
          {static_cast<float>(quad.areaX + quad.areaWidth - 1),
           static_cast<float>(quad.areaY + quad.areaHeight - 1), 0.0f, 0.0f});
}

void PicturePainter::WriteCrt(const SESSION_PICTURE& session, const SCREEN_QUAD& quad,
                              float strength) const {
    const bool glows = session.glow.glTexture != 0; // not before the next picture
    if (glows) {
        gl.activeTexture(kGlowUnit);
        glBindTexture(GL_TEXTURE_2D, session.glow.glTexture);
        SetTextureFilter(TextureFilter::kLinear);
        gl.activeTexture(GL_TEXTURE0);
    }
    gl.uniform1i(gl.getUniformLocation(crt, "glow"), glows ? 1 : 0);
    const auto cell = static_cast<float>(kGlowCell);
    Write(crt, "glowing",
          {1.0f / (cell * static_cast<float>(std::max(session.glow.texWidth, 1U))),
           1.0f / (cell * static_cast<float>(std::max(session.glow.texHeight, 1U))),
           glows ? kGlowPart : 0.0f, 0.0f});
    const float rows = 1.0f / DotsDown(quad);
    Write(crt, "beam",
          {BeamReach(kNarrowestBeam, rows), BeamReach(kWidestBeam, rows), kCrtLight, 0.0f});
    const CRT_MASK mask = CrtMask(quad.height);
    Write(
        crt, "mask",
        {static_cast<float>(mask.stripe), static_cast<float>(mask.slot), kStripeDepth, kSlotDepth});
    Write(crt, "strength", {strength, 0.0f, 0.0f, 0.0f});
}
