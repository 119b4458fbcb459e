#include "room/light_program.h"

#include "room/light_program_text.h"
#include "room/transform.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace {

constexpr float kAmbient = 0.5f;
constexpr std::array<float, 4> kLampColour{0.6f, 0.6f, 0.6f, 1.0f};
constexpr std::array<float, 4> kLampSpecular{0.5f, 0.5f, 0.5f, 1.0f};
constexpr float kLampLinear = 0.00005f;
constexpr float kLampQuadratic = 0.000008f;
constexpr float kTelevisionLinear = 0.01f;
constexpr float kTelevisionQuadratic = 0.0001f;
constexpr float kFalloffScale = 0.000001f;

// What a compiled form depends on, in one number.
enum VariantBits : uint32_t {
    kCountBits = 7, // the number of lights
    kFirstIsSpot = 8,
    kGlossy = 16,
    kTextured = 32,
    kTelevision = 64,
};
constexpr uint32_t kFullest = kMostLights | kGlossy | kTextured | kTelevision;

std::string FragmentText(uint32_t key) {
    const uint32_t count = key & kCountBits;
    const auto define = [key](const char* name, uint32_t bit) {
        return std::string("#define ") + name + ((key & bit) != 0 ? " 1\n" : " 0\n");
    };
    std::string text = "#version 120\n";
    text += define("GLOSSY", kGlossy);
    text += define("TEXTURED", kTextured);
    text += define("TELEVISION", kTelevision);
    text += "#define LIGHTS " + std::to_string(count) + "\n";
    text += kFragmentMiddle;
    for (uint32_t i = 0; i < count; ++i) {
        const bool spot = i > 0 || (key & kFirstIsSpot) != 0;
        text += "    AddLight(lights[" + std::to_string(i) + "], " + (spot ? "true" : "false") +
                ", factor, N, E, light, gloss);\n";
    }
    return text + kFragmentEnd;
}

// Some drivers return only a log, and in it the word.
bool LogTellsOfError(std::string log) {
    std::transform(log.begin(), log.end(), log.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return log.find("ERROR") != std::string::npos;
}

template <class GetLog>
std::string ReadLog(GetLog getLog, GLuint name) {
    constexpr GLsizei kMost = 4096;
    std::string log(kMost, '\0');
    GLsizei length = 0;
    getLog(name, kMost, &length, log.data());
    log.resize(static_cast<size_t>(std::clamp<GLsizei>(length, 0, kMost)));
    return log;
}

std::array<float, 4> Place(VECTOR3 v, float w) {
    return {v.x, v.y, v.z, w};
}

} // namespace

bool LightProgram::Start(const GL_FUNCTIONS& functions, std::string& error) {
    Release();
    gl = functions;
    if (gl.useProgram == nullptr) {
        error = "the graphics driver has no shaders; the room is drawn without lights";
        return false;
    }
    works = Compile(kFullest, variants[kFullest], error);
    if (!works) {
        Release();
    }
    return works;
}

void LightProgram::Release() {
    for (const auto& [key, variant] : variants) {
        if (variant.program != 0 && gl.deleteProgram != nullptr) {
            gl.deleteProgram(variant.program);
        }
    }
    variants.clear();
    current = nullptr;
    works = false;
}

GLuint LightProgram::CompileShader(GLenum kind, const std::string& text, std::string& error) {
    const GLuint shader = gl.createShader(kind);
    const GLchar* const source = text.c_str();
    gl.shaderSource(shader, 1, &source, nullptr);
    gl.compileShader(shader);
    const std::string log = ReadLog(gl.getShaderInfoLog, shader);
    if (LogTellsOfError(log)) {
        error = "the room's shader cannot be compiled: " + log;
    }
    return shader;
}

bool LightProgram::Compile(uint32_t key, VARIANT& variant, std::string& error) {
    error.clear();
    const GLuint vertex = CompileShader(GL_VERTEX_SHADER, kVertexText, error);
    const GLuint fragment = CompileShader(GL_FRAGMENT_SHADER, FragmentText(key), error);
    const GLuint program = gl.createProgram();
    gl.attachShader(program, vertex);
    gl.attachShader(program, fragment);
    gl.linkProgram(program);
    if (gl.deleteShader != nullptr) { // they live on with the program
        gl.deleteShader(vertex);
        gl.deleteShader(fragment);
    }
    if (error.empty()) {
        const std::string log = ReadLog(gl.getProgramInfoLog, program);
        GLint linked = GL_TRUE;
        if (gl.getProgramiv != nullptr) {
            gl.getProgramiv(program, GL_LINK_STATUS, &linked);
        }
        if (linked != GL_TRUE || LogTellsOfError(log)) {
            error = "the room's shader cannot be linked: " + log;
        }
    }
    if (!error.empty()) {
        if (gl.deleteProgram != nullptr) {
            gl.deleteProgram(program);
        }
        return false;
    }
    variant.program = program;
    FindPlaces(variant, key & kCountBits);
    return true;
}

void LightProgram::FindPlaces(VARIANT& variant, size_t lightCount) const {
    gl.useProgram(variant.program);
    gl.uniform1i(gl.getUniformLocation(variant.program, "Texture0"), 0);
    gl.useProgram(0);
    variant.tvPlace = gl.getUniformLocation(variant.program, "fTV");
    for (size_t i = 0; i < lightCount; ++i) {
        const std::string prefix = "lights[" + std::to_string(i) + "].";
        const auto place = [&](const char* name) {
            return gl.getUniformLocation(variant.program, (prefix + name).c_str());
        };
        variant.places[i] = {place("color"),
                             place("specular"),
                             place("pos"),
                             place("ambient"),
                             place("direction"),
                             place("spotCosCutoff"),
                             place("spotBall"),
                             place("constantAttenuation"),
                             place("linearAttenuation"),
                             place("quadraticAttenuation")};
    }
}

void LightProgram::ClearLights() {
    for (ROOM_LIGHT& light : lights) {
        light.bEnabled = false;
    }
    lightsWritten = false;
}

void LightProgram::SetLamp(size_t index, const MATRIX4& view, VECTOR3 position) {
    ROOM_LIGHT& light = lights[index];
    light = {};
    lightsWritten = false;
    light.bEnabled = true;
    light.bSpot = false;
    light.ambient = kAmbient;
    light.constantAttenuation = 1.0f;
    light.linearAttenuation = kLampLinear;
    light.quadraticAttenuation = kLampQuadratic;
    light.color = kLampColour;
    light.specular = kLampSpecular;
    light.pos = Place(TransformPoint(view, position), 1.0f);
}

void LightProgram::SetLight(size_t index, const MATRIX4& view, float falloff,
                            const COLOUR_HISTORY& colours, VECTOR3 position, VECTOR3 direction,
                            float ball, float cutoffAngle) {
    ROOM_LIGHT& light = lights[index];
    lightsWritten = false;
    light.bEnabled = true;
    light.bSpot = true;
    light.ambient = kAmbient;
    light.constantAttenuation = 1.0f;
    light.linearAttenuation = kTelevisionLinear;
    light.quadraticAttenuation = kTelevisionQuadratic - falloff * kFalloffScale;
    light.spotCosCutoff = std::cos(Radians(cutoffAngle));
    light.spotBall = ball;
    light.color = {colours.light[0], colours.light[1], colours.light[2], 1.0f};
    light.specular = light.color;
    light.pos = Place(TransformPoint(view, position), 1.0f);
    light.direction = Place(TransformDirection(view, direction), 0.0f);
}

size_t LightProgram::LightCount() const {
    const auto dark = std::find_if(lights.begin(), lights.end(),
                                   [](const ROOM_LIGHT& light) { return !light.bEnabled; });
    return static_cast<size_t>(dark - lights.begin());
}

LightProgram::VARIANT* LightProgram::Find(const LIT_SURFACE& surface) {
    auto key = static_cast<uint32_t>(LightCount());
    if (key != 0) {
        key |= lights[0].bSpot ? kFirstIsSpot : 0U;
        key |= surface.glossy ? kGlossy : 0U;
    }
    key |= surface.textured ? kTextured : 0U;
    key |= surface.fTV != 0.0f ? kTelevision : 0U;
    const auto [found, isNew] = variants.try_emplace(key);
    std::string error; // the fullest form was compiled; a failure draws without the program
    if (isNew && !Compile(key, found->second, error)) {
        found->second.program = 0;
    }
    return &found->second;
}

void LightProgram::WriteLight(const ROOM_LIGHT& light, const LIGHT_PLACES& places,
                              ROOM_LIGHT& written, ROOM_COUNTERS& counters) const {
    const auto write4 = [&](GLint place, const std::array<float, 4>& value,
                            std::array<float, 4>& last) {
        if (place >= 0 && value != last) {
            gl.uniform4f(place, value[0], value[1], value[2], value[3]);
            last = value;
            ++counters.uniformWrites;
        }
    };
    const auto write1 = [&](GLint place, float value, float& last) {
        if (place >= 0 && value != last) {
            gl.uniform1f(place, value);
            last = value;
            ++counters.uniformWrites;
        }
    };
    write4(places.color, light.color, written.color);
    write4(places.specular, light.specular, written.specular);
    write4(places.pos, light.pos, written.pos);
    write1(places.ambient, light.ambient, written.ambient);
    write4(places.direction, light.direction, written.direction);
    write1(places.spotCosCutoff, light.spotCosCutoff, written.spotCosCutoff);
    write1(places.spotBall, light.spotBall, written.spotBall);
    write1(places.constantAttenuation, light.constantAttenuation, written.constantAttenuation);
    write1(places.linearAttenuation, light.linearAttenuation, written.linearAttenuation);
    write1(places.quadraticAttenuation, light.quadraticAttenuation, written.quadraticAttenuation);
}

// A uniform is 0 until it is written, and so is the record of what was written.
void LightProgram::Use(const LIT_SURFACE& surface, ROOM_COUNTERS& counters) {
    if (!works) {
        return;
    }
    VARIANT* const variant = Find(surface);
    if (variant != current) {
        gl.useProgram(variant->program);
        current = variant;
        lightsWritten = false;
        ++counters.programChanges;
    }
    if (!lightsWritten) {
        lightsWritten = true;
        const size_t count = variant->program == 0 ? 0 : LightCount();
        for (size_t i = 0; i < count; ++i) {
            WriteLight(lights[i], variant->places[i], variant->written[i], counters);
        }
    }
    if (variant->tvPlace >= 0 && surface.fTV != variant->writtenTv) {
        gl.uniform1f(variant->tvPlace, surface.fTV);
        variant->writtenTv = surface.fTV;
        ++counters.uniformWrites;
    }
}

void LightProgram::Off(ROOM_COUNTERS& counters) {
    if (works && current != nullptr) {
        gl.useProgram(0);
        current = nullptr;
        ++counters.programChanges;
    }
}
