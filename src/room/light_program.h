// LightProgram: the shader that lights the room: up to five lights, computed for every pixel.
//
// A surface's own colour is its texture's, or its diffuse colour, plus its emission. A lamp adds ambient light
// everywhere; a television shines forward in a cone, to all sides close to its screen, and faintly
// everywhere else. The picture on a television's glass shows by itself and takes little light.
//
// The text is compiled for the lights that shine and the kind of surface at hand: the places of the lights are
// constants in it, and no pixel pays for a light that is off. Compiling takes a driver up to a few frames' time. So
// lights that are new are drawn by a general form first, which has the lights and the surface in uniforms, and one
// form is compiled in each scene after that.
//
// Units: lights in the room's axes and units. Colours 0 to 1; the result is written as it is, so the frame
//   buffer must not convert to sRGB, which is OpenGL's default.
// Order: Start; ClearLights and lights from index 0 on, once a frame; BeginScene; Use before each drawing, with
//   the camera in the projection matrix and the furniture's place in the modelview matrix.
// Thread: main, with the context current.
#pragma once

#include "display/gl_functions.h"
#include "display/session_picture.h"
#include "room/room_counters.h"
#include "room/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

inline constexpr size_t kMostLights = 5;

// What of a light does not change while it shines.
struct LIGHT_SHAPE {
    bool bEnabled = false;
    bool bSpot = false;
    VECTOR3 pos{};
    VECTOR3 direction{};  // of a spot
    float ambient = 0.0f; // of all three channels
    float spotCosCutoff = 0.0f;
    float spotBall = 0.0f;
    float constantAttenuation = 0.0f;
    float linearAttenuation = 0.0f;
    float quadraticAttenuation = 0.0f;

    bool operator==(const LIGHT_SHAPE&) const = default;
};

struct ROOM_LIGHT {
    LIGHT_SHAPE shape;
    std::array<float, 4> color{};
    std::array<float, 4> specular{};
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
    // The lamp under the ceiling.
    void SetLamp(size_t index, VECTOR3 position);
    // A television. `cutoffAngle` in degrees from `direction`, `ball` the radius of the light to all sides.
    void SetLight(size_t index, float falloff, const COLOUR_HISTORY& colours, VECTOR3 position,
                  VECTOR3 direction, float ball, float cutoffAngle);
    // The place of the camera, which a mirrored light is seen from.
    void SetEye(VECTOR3 place);
    [[nodiscard]] const std::array<ROOM_LIGHT, kMostLights>& Lights() const { return lights; }
    // Only the lights before the first disabled one shine.
    [[nodiscard]] size_t LightCount() const;

    // Others have drawn, so the program in use is no longer known.
    void BeginScene();
    // Turns the program for this surface on and gives it the lights.
    void Use(const LIT_SURFACE& surface, ROOM_COUNTERS& counters);
    // Back to the fixed pipeline.
    void Off(ROOM_COUNTERS& counters);

private:
    // One compiled form of the text, and what was last written to it.
    struct VARIANT {
        GLuint program = 0; // 0 if it cannot be compiled
        GLint tvPlace = -1;
        GLint eyePlace = -1;
        std::array<GLint, kMostLights> colorPlaces{-1, -1, -1, -1, -1};
        float writtenTv = 0.0f;
        std::array<float, 4> writtenEye{};
        std::array<std::array<float, 4>, kMostLights> writtenColors{};
    };
    // The form for all lights and surfaces.
    static constexpr size_t kRows = kMostLights * 4;
    struct GENERAL {
        VARIANT variant;
        GLint countPlace = -1;
        GLint glossyPlace = -1;
        std::array<GLint, kRows> rowPlaces{};
        float writtenCount = 0.0f;
        float writtenGlossy = 0.0f;
        std::array<std::array<float, 4>, kRows> writtenRows{};
    };
    // The forms for some lights, by the kind of surface.
    struct LIGHT_SET {
        std::vector<LIGHT_SHAPE> shapes;
        std::map<uint32_t, VARIANT> variants;
    };

    void FindLightSet();
    [[nodiscard]] VARIANT* Find(const LIT_SURFACE& surface);
    [[nodiscard]] bool CompileGeneral(std::string& error);
    void TurnOn(VARIANT* variant, ROOM_COUNTERS& counters);
    void WriteGeneral(const LIT_SURFACE& surface, ROOM_COUNTERS& counters);
    [[nodiscard]] bool Compile(const std::string& fragmentText, VARIANT& variant,
                               std::string& error) const;
    void FindPlaces(VARIANT& variant) const;
    void Write1(GLint place, float value, float& written, ROOM_COUNTERS& counters) const;
    void Write4(GLint place, const std::array<float, 4>& value, std::array<float, 4>& written,
                ROOM_COUNTERS& counters) const;
    void DeleteVariant(const VARIANT& variant) const;
    void DropLightSet(const LIGHT_SET& set);

    GL_FUNCTIONS gl;
    bool works = false;
    std::array<ROOM_LIGHT, kMostLights> lights{};
    std::array<float, 4> eye{};
    GENERAL general;
    bool mayCompile = false;    // a form, in this scene
    std::list<LIGHT_SET> sets;  // the one in use first
    bool setKnown = false;      // the first set is that of `lights`
    VARIANT* current = nullptr; // in use; null: the fixed pipeline, or not known
    bool written = false;       // colours and eye, to `current`
};
