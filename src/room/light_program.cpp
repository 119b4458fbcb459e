#include "room/light_program.h"

#include "display/shader_program.h"
#include "room/light_program_text.h"
#include "room/transform.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace {

constexpr float kAmbient = 0.5f;
constexpr std::array<float, 4> kLampColour{0.6f, 0.6f, 0.6f, 1.0f};
constexpr std::array<float, 4> kLampSpecular{0.5f, 0.5f, 0.5f, 1.0f};
constexpr float kLampLinear = 0.00005f;
constexpr float kLampQuadratic = 0.000008f;
constexpr float kTelevisionLinear = 0.01f;
constexpr float kTelevisionQuadratic = 0.0001f;
constexpr float kFalloffScale = 0.000001f;

constexpr size_t kMostLightSets = 64; // kept compiled: an evening's comings and goings

// The kind of a surface, in one number.
enum SurfaceBits : uint32_t { kGlossy = 1, kTextured = 2, kTelevision = 4 };

// A number as GLSL reads it, exact. Nine digits tell all floats apart; the exponent makes it no integer.
std::string Literal(float value) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                            std::chars_format::scientific, 8);
    return {text.data(), end};
}

std::string Literal(VECTOR3 v) {
    return "vec3(" + Literal(v.x) + ", " + Literal(v.y) + ", " + Literal(v.z) + ")";
}

VECTOR3 Channels(const std::array<float, 4>& colour) {
    return {colour[0], colour[1], colour[2]};
}

std::string CallText(const LIGHT_SHAPE& shape, size_t index) {
    const std::string attenuation = Literal(shape.constantAttenuation) + ", " +
                                    Literal(shape.linearAttenuation) + ", " +
                                    Literal(shape.quadraticAttenuation) + ");\n";
    if (!shape.bSpot) {
        return "    AddLamp(" + Literal(shape.pos) + ", " + Literal(Channels(kLampColour)) + ", " +
               Literal(Channels(kLampSpecular)) + ", " + Literal(shape.ambient) + ", " +
               attenuation;
    }
    return "    AddTelevision(color[" + std::to_string(index) + "].rgb, " + Literal(shape.pos) +
           ", " + Literal(shape.direction) + ", " + Literal(shape.ambient) + ", " +
           Literal(shape.spotCosCutoff) + ", " + Literal(shape.spotBall) + ", " + attenuation;
}

std::string FragmentText(const std::vector<LIGHT_SHAPE>& shapes, uint32_t kind) {
    const auto define = [kind](const char* name, uint32_t bit) {
        return std::string("#define ") + name + ((kind & bit) != 0 ? " 1\n" : " 0\n");
    };
    std::string text = "#version 120\n#define GENERAL 0\n";
    text += define("GLOSSY", kGlossy);
    text += define("TEXTURED", kTextured);
    text += define("TELEVISION", kTelevision);
    text += "#define LIGHTS " + std::to_string(shapes.size()) + "\n";
    text += kFragmentMiddle;
    for (size_t i = 0; i < shapes.size(); ++i) {
        text += CallText(shapes[i], i);
    }
    return text + kFragmentEnd;
}

std::string GeneralText() {
    return std::string("#version 120\n#define GENERAL 1\n") + kFragmentMiddle + kGeneralCalls +
           kFragmentEnd;
}

// A light as the general form reads it.
std::array<std::array<float, 4>, 4> LightRows(const ROOM_LIGHT& light) {
    const LIGHT_SHAPE& shape = light.shape;
    const std::array<float, 4> aim{shape.direction.x, shape.direction.y, shape.direction.z,
                                   shape.spotCosCutoff};
    return {
        {
         {light.color[0], light.color[1], light.color[2], shape.bSpot ? 1.0f : 0.0f},
         {shape.pos.x, shape.pos.y, shape.pos.z, shape.ambient},
         shape.bSpot ? aim : light.specular,
         {shape.constantAttenuation, shape.linearAttenuation, shape.quadraticAttenuation,
             shape.spotBall},
         }
    };
}

} // namespace

bool LightProgram::Start(const GL_FUNCTIONS& functions, std::string& error) {
    Release();
    gl = functions;
    if (gl.useProgram == nullptr) {
        error = "the graphics driver has no shaders; the room is drawn without lights";
        return false;
    }
    works = CompileGeneral(error); // no other form has anything that this has not
    if (!works) {
        Release();
    }
    return works;
}

void LightProgram::Release() {
    for (const LIGHT_SET& set : sets) {
        DropLightSet(set);
    }
    sets.clear();
    DeleteVariant(general.variant);
    general = {};
    setKnown = false;
    current = nullptr;
    works = false;
}

void LightProgram::DeleteVariant(const VARIANT& variant) const {
    if (variant.program != 0 && gl.deleteProgram != nullptr) {
        gl.deleteProgram(variant.program);
    }
}

void LightProgram::DropLightSet(const LIGHT_SET& set) {
    for (const auto& [kind, variant] : set.variants) {
        DeleteVariant(variant);
    }
}

bool LightProgram::Compile(const std::string& fragmentText, VARIANT& variant,
                           std::string& error) const {
    const GLuint program =
        CompileProgram(gl, kVertexText, fragmentText, "the room's shader", error);
    if (program == 0) {
        return false;
    }
    variant.program = program;
    FindPlaces(variant);
    return true;
}

void LightProgram::FindPlaces(VARIANT& variant) const {
    gl.useProgram(variant.program);
    gl.uniform1i(gl.getUniformLocation(variant.program, "Texture0"), 0);
    gl.useProgram(0);
    variant.tvPlace = gl.getUniformLocation(variant.program, "fTV");
    variant.eyePlace = gl.getUniformLocation(variant.program, "eye");
    for (size_t i = 0; i < kMostLights; ++i) {
        const std::string name = "color[" + std::to_string(i) + "]";
        variant.colorPlaces[i] = gl.getUniformLocation(variant.program, name.c_str());
    }
}

bool LightProgram::CompileGeneral(std::string& error) {
    general = {};
    if (!Compile(GeneralText(), general.variant, error)) {
        return false;
    }
    const GLuint program = general.variant.program;
    general.countPlace = gl.getUniformLocation(program, "count");
    general.glossyPlace = gl.getUniformLocation(program, "glossy");
    for (size_t i = 0; i < kRows; ++i) {
        const std::string name = "row[" + std::to_string(i) + "]";
        general.rowPlaces[i] = gl.getUniformLocation(program, name.c_str());
    }
    return true;
}

void LightProgram::BeginScene() {
    current = nullptr;
    mayCompile = true;
}

void LightProgram::ClearLights() {
    for (ROOM_LIGHT& light : lights) {
        light.shape.bEnabled = false;
    }
    setKnown = false;
    written = false;
}

void LightProgram::SetLamp(size_t index, VECTOR3 position) {
    ROOM_LIGHT& light = lights[index];
    light.shape = {};
    light.shape.bEnabled = true;
    light.shape.pos = position;
    light.shape.ambient = kAmbient;
    light.shape.constantAttenuation = 1.0f;
    light.shape.linearAttenuation = kLampLinear;
    light.shape.quadraticAttenuation = kLampQuadratic;
    light.color = kLampColour;
    light.specular = kLampSpecular;
    setKnown = false;
    written = false;
}

void LightProgram::SetLight(size_t index, float falloff, const COLOUR_HISTORY& colours,
                            VECTOR3 position, VECTOR3 direction, float ball, float cutoffAngle) {
    ROOM_LIGHT& light = lights[index];
    light.shape = {};
    light.shape.bEnabled = true;
    light.shape.bSpot = true;
    light.shape.pos = position;
    light.shape.direction = direction;
    light.shape.ambient = kAmbient;
    light.shape.constantAttenuation = 1.0f;
    light.shape.linearAttenuation = kTelevisionLinear;
    light.shape.quadraticAttenuation = kTelevisionQuadratic - falloff * kFalloffScale;
    light.shape.spotCosCutoff = std::cos(Radians(cutoffAngle));
    light.shape.spotBall = ball;
    light.color = {colours.light[0], colours.light[1], colours.light[2], 1.0f};
    light.specular = light.color;
    setKnown = false;
    written = false;
}

void LightProgram::SetEye(VECTOR3 place) {
    eye = {place.x, place.y, place.z, 1.0f};
    written = false;
}

size_t LightProgram::LightCount() const {
    const auto dark = std::find_if(lights.begin(), lights.end(),
                                   [](const ROOM_LIGHT& light) { return !light.shape.bEnabled; });
    return static_cast<size_t>(dark - lights.begin());
}

// Brings the set of these lights to the front; the one that was not used for longest makes room for a new one. The
// scene in which a set turns on has enough to do, so it compiles nothing.
void LightProgram::FindLightSet() {
    if (setKnown) {
        return;
    }
    setKnown = true;
    std::vector<LIGHT_SHAPE> shapes;
    for (size_t i = 0; i < LightCount(); ++i) {
        shapes.push_back(lights[i].shape);
    }
    const auto found = std::find_if(sets.begin(), sets.end(),
                                    [&](const LIGHT_SET& set) { return set.shapes == shapes; });
    if (found != sets.end()) {
        sets.splice(sets.begin(), sets, found);
        return;
    }
    if (sets.size() == kMostLightSets) {
        DropLightSet(sets.back());
        sets.pop_back();
    }
    sets.push_front({std::move(shapes), {}});
    mayCompile = false;
}

// The general form until there is one for the surface, and if that cannot be compiled.
LightProgram::VARIANT* LightProgram::Find(const LIT_SURFACE& surface) {
    FindLightSet();
    LIGHT_SET& set = sets.front();
    uint32_t kind = surface.textured ? kTextured : 0U;
    kind |= surface.fTV != 0.0f ? kTelevision : 0U;
    kind |= surface.glossy && !set.shapes.empty() ? kGlossy : 0U;
    auto found = set.variants.find(kind);
    if (found == set.variants.end() && mayCompile) {
        mayCompile = false;
        current = nullptr; // Compile turns it off
        found = set.variants.try_emplace(kind).first;
        std::string error;
        if (!Compile(FragmentText(set.shapes, kind), found->second, error)) {
            found->second = {};
        }
    }
    const bool ready = found != set.variants.end() && found->second.program != 0;
    return ready ? &found->second : &general.variant;
}

void LightProgram::Write1(GLint place, float value, float& last, ROOM_COUNTERS& counters) const {
    if (place >= 0 && value != last) {
        gl.uniform1f(place, value);
        last = value;
        ++counters.uniformWrites;
    }
}

void LightProgram::Write4(GLint place, const std::array<float, 4>& value,
                          std::array<float, 4>& last, ROOM_COUNTERS& counters) const {
    if (place >= 0 && value != last) {
        gl.uniform4f(place, value[0], value[1], value[2], value[3]);
        last = value;
        ++counters.uniformWrites;
    }
}

void LightProgram::TurnOn(VARIANT* variant, ROOM_COUNTERS& counters) {
    if (variant != current) {
        gl.useProgram(variant->program);
        current = variant;
        written = false;
        ++counters.programChanges;
    }
}

void LightProgram::WriteGeneral(const LIT_SURFACE& surface, ROOM_COUNTERS& counters) {
    Write1(general.glossyPlace, surface.glossy ? 1.0f : 0.0f, general.writtenGlossy, counters);
    if (written) {
        return;
    }
    const size_t count = LightCount();
    Write1(general.countPlace, static_cast<float>(count), general.writtenCount, counters);
    for (size_t i = 0; i < count; ++i) {
        const auto rows = LightRows(lights[i]);
        for (size_t k = 0; k < rows.size(); ++k) {
            const size_t at = i * rows.size() + k;
            Write4(general.rowPlaces[at], rows[k], general.writtenRows[at], counters);
        }
    }
}

// A uniform is 0 until it is written, and so is the record of what was written.
void LightProgram::Use(const LIT_SURFACE& surface, ROOM_COUNTERS& counters) {
    if (!works) {
        return;
    }
    VARIANT* const variant = Find(surface);
    TurnOn(variant, counters);
    if (variant == &general.variant) {
        WriteGeneral(surface, counters);
    }
    if (!written) {
        written = true;
        Write4(variant->eyePlace, eye, variant->writtenEye, counters);
        for (size_t i = 0; i < kMostLights; ++i) {
            Write4(variant->colorPlaces[i], lights[i].color, variant->writtenColors[i], counters);
        }
    }
    Write1(variant->tvPlace, surface.fTV, variant->writtenTv, counters);
}

void LightProgram::Off(ROOM_COUNTERS& counters) {
    if (works && current != nullptr) {
        gl.useProgram(0);
        current = nullptr;
        ++counters.programChanges;
    }
}
