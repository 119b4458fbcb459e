// LightProgram: the shader that lights the room: up to five lights, computed for every pixel.
//
// A surface's own colour is its texture's, or its diffuse colour, plus its emission. A lamp adds ambient light
// everywhere; a television shines forward in a cone, to all sides close to its screen, and faintly
// everywhere else. The picture on a television's glass shows by itself and takes little light.
//
// The text is compiled for the number of lights and the kind of surface at hand, when first used: a
// software renderer computes both sides of every branch, so it gets none that can be decided before.
//
// Units: lights in eye space, room units. Colours 0 to 1; the result is written as it is, so the frame
//   buffer must not convert to sRGB, which is OpenGL's default.
// Order: Start; ClearLights and lights from index 0 on, once a frame; Use before each drawing.
// Thread: main, with the context current.
#pragma once

#include "display/session_picture.h"
#include "room/gl_functions.h"
#include "room/room_counters.h"
#include "room/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

inline constexpr size_t kMostLights = 5;

// A light as the shader takes it.
struct ROOM_LIGHT {
    bool bEnabled = false;
    bool bSpot = false;
    std::array<float, 4> color{};
    std::array<float, 4> specular{};
    std::array<float, 4> pos{};
    std::array<float, 4> ambient{};
    std::array<float, 4> direction{};
    float spotCosCutoff = 0.0f;
    float spotBall = 0.0f;
    float constantAttenuation = 0.0f;
    float linearAttenuation = 0.0f;
    float quadraticAttenuation = 0.0f;
};

// What the shader needs to know of a surface beyond OpenGL's material and texture.
struct LIT_SURFACE {
    bool textured = false;
    bool glossy = false; // its shininess is not 0
    float fTV = 0.0f;    // brightness of a television's picture; 0 for anything else
};

class LightProgram {
public:
    LightProgram() = default;
    ~LightProgram() { Release(); }
    LightProgram(const LightProgram&) = delete;
    LightProgram& operator=(const LightProgram&) = delete;

    // Compiles the text. False with the compiler's log if that fails, or if the driver lacks shaders; all
    // calls but Start then do nothing.
    [[nodiscard]] bool Start(const GL_FUNCTIONS& functions, std::string& error);
    void Release();
    [[nodiscard]] bool Works() const { return works; }

    void ClearLights();
    // The lamp under the ceiling, at a place of the room.
    void SetLamp(size_t index, const MATRIX4& view, VECTOR3 position);
    // A television. `cutoffAngle` in degrees from `direction`, `ball` the radius of the light to all sides.
    void SetLight(size_t index, const MATRIX4& view, float falloff, const COLOUR_HISTORY& colours,
                  VECTOR3 position, VECTOR3 direction, float ball, float cutoffAngle);
    [[nodiscard]] const std::array<ROOM_LIGHT, kMostLights>& Lights() const { return lights; }
    // Only the lights before the first disabled one shine.
    [[nodiscard]] size_t LightCount() const;

    // Turns the program for this surface on and gives it the lights.
    void Use(const LIT_SURFACE& surface, ROOM_COUNTERS& counters);
    // Back to the fixed pipeline.
    void Off(ROOM_COUNTERS& counters);
    // The program in use is no longer known, since others have drawn.
    void ForgetState() { current = nullptr; }

private:
    struct LIGHT_PLACES {
        GLint color, specular, pos, ambient, direction;
        GLint spotCosCutoff, spotBall;
        GLint constantAttenuation, linearAttenuation, quadraticAttenuation;
    };
    // One compiled form of the text, and what was last written to it.
    struct VARIANT {
        GLuint program = 0; // 0 if it cannot be compiled
        GLint tvPlace = -1;
        std::array<LIGHT_PLACES, kMostLights> places{};
        std::array<ROOM_LIGHT, kMostLights> written{};
        float writtenTv = 0.0f;
    };

    [[nodiscard]] VARIANT* Find(const LIT_SURFACE& surface);
    [[nodiscard]] bool Compile(uint32_t key, VARIANT& variant, std::string& error);
    [[nodiscard]] GLuint CompileShader(GLenum kind, const std::string& text, std::string& error);
    void FindPlaces(VARIANT& variant, size_t lightCount) const;
    void WriteLight(const ROOM_LIGHT& light, const LIGHT_PLACES& places, ROOM_LIGHT& written,
                    ROOM_COUNTERS& counters) const;

    GL_FUNCTIONS gl;
    bool works = false;
    std::array<ROOM_LIGHT, kMostLights> lights{};
    std::map<uint32_t, VARIANT> variants;
    VARIANT* current = nullptr; // in use; null: the fixed pipeline, or not known
    bool lightsWritten = false; // to `current`
};
