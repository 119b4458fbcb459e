// The light of the room, compared pixel for pixel with its formula, which is written out here once more.
#include "room/light_program.h"
#include "room/room_fixture.h"
#include "room/room_painter.h"
#include "room/transform.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr uint32_t kWide = 64; // the part of the window that is drawn
constexpr uint32_t kHigh = 48;

// Sums in double: what the program should show.
struct RGB {
    double r = 0;
    double g = 0;
    double b = 0;

    RGB operator+(RGB o) const { return {r + o.r, g + o.g, b + o.b}; }
    RGB operator*(RGB o) const { return {r * o.r, g * o.g, b * o.b}; }
    RGB operator*(double f) const { return {r * f, g * f, b * f}; }
};

struct XYZ {
    double x = 0;
    double y = 0;
    double z = 0;

    XYZ operator+(XYZ o) const { return {x + o.x, y + o.y, z + o.z}; }
    XYZ operator-(XYZ o) const { return {x - o.x, y - o.y, z - o.z}; }
    XYZ operator*(double f) const { return {x * f, y * f, z * f}; }
};

double Times(XYZ a, XYZ b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

XYZ Unit(XYZ a) {
    return a * (1 / std::sqrt(Times(a, a)));
}

struct LIGHT {
    bool spot = false;
    RGB color;
    RGB specular;
    XYZ pos; // eye space
    XYZ direction;
    double cosCutoff = 0;
    double ball = 0;
    double linear = 0;
    double quadratic = 0;
};

struct SURFACE {
    RGB texture{}; // 0 without one
    RGB diffuse{};
    RGB emission{};
    RGB specular{};
    double shininess = 0;
    double fTV = 0;
};

RGB LitColour(const SURFACE& surface, const std::vector<LIGHT>& lights, XYZ worldPos, XYZ N) {
    const RGB color1 = surface.texture + surface.diffuse + surface.emission;
    RGB result;
    double factor = 1;
    if (surface.fTV != 0) {
        result = color1 * surface.fTV;
        factor = 0.3;
    }
    for (const LIGHT& light : lights) {
        const XYZ lightDir = light.pos - worldPos;
        const double d = std::sqrt(Times(lightDir, lightDir));
        const XYZ L = Unit(lightDir);
        double att = factor / (1 + light.linear * d + light.quadratic * d * d);
        double shiny = surface.shininess;
        if (light.spot) {
            if (Times(L * -1, light.direction) <= light.cosCutoff) {
                if (d > light.ball) {
                    const double dim = std::clamp(att * 4, 0.0, 0.2);
                    result = result + light.color * color1 * (0.5 * dim);
                    continue;
                }
                att *= 5;
                shiny = 0;
            }
        } else {
            result = result + color1 * (0.5 * att);
        }
        const double lambert = std::max(Times(N, L), 0.0);
        if (lambert > 0) {
            result = result + light.color * color1 * (lambert * att);
            if (shiny != 0) {
                const XYZ E = Unit(worldPos * -1);
                const XYZ R = L * -1 - N * (2 * Times(N, L * -1));
                const double mirror = std::pow(std::max(Times(R, E), 0.0), surface.shininess);
                result = result + light.specular * surface.specular * (std::abs(mirror) * att);
            }
        }
    }
    return result;
}

// An even projection, in which the middle of a pixel is a known place: the drawn part of the window shows
// -40..40 by -30..30 of the plane.
constexpr double kHalfWidth = 40;
constexpr double kHalfHeight = 30;

MATRIX4 EvenProjection() {
    return {static_cast<float>(1 / kHalfWidth),
            0,
            0,
            0,
            0,
            static_cast<float>(1 / kHalfHeight),
            0,
            0,
            0,
            0,
            -0.001f,
            0,
            0,
            0,
            0,
            1};
}

// The camera stands somewhere in the room and looks somewhere: the formula counts in its axes, the program in
// the room's.
const MATRIX4 kView =
    Multiply(RotationAboutX(20), Multiply(RotationAboutY(30), Translation({-40, 15, 70})));

VECTOR3 DirectionInRoom(XYZ eye) {
    const auto along = [&](size_t column) {
        return static_cast<float>(double{kView[column * 4]} * eye.x +
                                  double{kView[column * 4 + 1]} * eye.y +
                                  double{kView[column * 4 + 2]} * eye.z);
    };
    return {along(0), along(1), along(2)};
}

VECTOR3 PlaceInRoom(XYZ eye) {
    return DirectionInRoom(
        {eye.x - double{kView[12]}, eye.y - double{kView[13]}, eye.z - double{kView[14]}});
}

// Fakes of a driver that fails.
void WriteErrorLog(GLuint /*shader*/, GLsizei size, GLsizei* length, GLchar* log) {
    constexpr std::string_view kText = "line 3: ERROR: no such thing";
    *length = static_cast<GLsizei>(kText.copy(log, static_cast<size_t>(size)));
}

uint32_t gProgramLogs = 0;
PFNGLGETPROGRAMINFOLOGPROC gGetProgramLog = nullptr;

void FailAfterTheFirst(GLuint program, GLsizei size, GLsizei* length, GLchar* log) {
    ++gProgramLogs;
    gProgramLogs > 1 ? WriteErrorLog(program, size, length, log)
                     : gGetProgramLog(program, size, length, log);
}

uint32_t gProgramsLinked = 0;
PFNGLLINKPROGRAMPROC gLinkProgram = nullptr;

void CountLink(GLuint program) {
    ++gProgramsLinked;
    gLinkProgram(program);
}

class LightFormula : public RoomGlTest {
protected:
    void SetUp() override {
        RoomGlTest::SetUp();
        painter.Start(Services());
        ASSERT_TRUE(painter.Program().Works()) << testing::PrintToString(reports);
        texture.width = texture.height = 1;
        ASSERT_TRUE(CreateTexture(texture, false));
        const uint32_t pixel = 0xFF406080;
        ASSERT_TRUE(UploadTexture(texture, &pixel, 1, 1, 1));
    }

    void TearDown() override {
        painter.Release();
        DestroyTexture(texture);
        RoomGlTest::TearDown();
    }

    void AddLamp(XYZ place) {
        painter.Program().SetLamp(lights.size(), PlaceInRoom(place));
        lights.push_back({
            false, {0.6,  0.6, 0.6},
             {0.5, 0.5, 0.5},
             place, {},
             0, 0, 0.00005, 0.000008
        });
    }

    void AddTelevision(RGB colour, XYZ place, XYZ direction, double ball, double angle,
                       double falloff) {
        const auto f = [](double value) { return static_cast<float>(value); };
        COLOUR_HISTORY colours;
        colours.light = {f(colour.r), f(colour.g), f(colour.b)};
        painter.Program().SetLight(lights.size(), f(falloff), colours, PlaceInRoom(place),
                                   DirectionInRoom(direction), f(ball), f(angle));
        lights.push_back({true, colour, colour, place, direction,
                          std::cos(angle * std::numbers::pi / 180), ball, 0.01,
                          0.0001 - falloff * 0.000001});
    }

    // In two scenes: lights that are new are drawn by the general form in the first and by their own in the second.
    void ExpectFormula(const SURFACE& surface, int tolerance, XYZ normal = {0, 0, 1}) {
        DrawAndCompare(surface, tolerance, normal);
        uniformWrites = painter.Counters().uniformWrites;
        DrawAndCompare(surface, tolerance, normal);
        uniformWrites += painter.Counters().uniformWrites;
    }

    // Draws the plane z = `depth` with this normal and compares every pixel.
    void DrawAndCompare(const SURFACE& surface, int tolerance, XYZ normal) {
        const auto f = [](double value) { return static_cast<float>(value); };
        const std::array<VECTOR3, 4> places{
            PlaceInRoom({-99, -99, kDepth}), PlaceInRoom({99, -99, kDepth}),
            PlaceInRoom({99, 99, kDepth}), PlaceInRoom({-99, 99, kDepth})};
        std::array<VECTOR3, 4> normals{};
        normals.fill(DirectionInRoom(normal));
        const std::array<float, 8> coordinates{};
        const std::array<uint16_t, 6> indices{0, 1, 2, 0, 2, 3};

        ClearScreen(kBlack);
        glViewport(0, 0, kWide, kHigh);
        painter.BeginScene(EvenProjection(), kView);
        painter.SetArrays({0, places.data(), normals.data(), coordinates.data()});
        const bool textured = surface.texture.r + surface.texture.g + surface.texture.b > 0;
        painter.SetMaterial({
            {f(surface.diffuse.r),  f(surface.diffuse.g),  f(surface.diffuse.b) },
            {f(surface.specular.r), f(surface.specular.g), f(surface.specular.b)},
            f(surface.emission.r),
            f(surface.shininess)
        });
        if (surface.fTV != 0) {
            painter.BindPicture(texture, {}, f(surface.fTV));
        } else {
            painter.BindTexture(textured ? &texture : nullptr);
        }
        painter.DrawTriangles(0, indices.data(), 6);
        painter.EndScene();

        std::vector<uint8_t> seen(size_t{kWide} * kHigh * 4);
        glReadPixels(0, 0, kWide, kHigh, GL_RGBA, GL_UNSIGNED_BYTE, seen.data());
        int largest = 0;
        for (uint32_t y = 0; y < kHigh; ++y) {
            for (uint32_t x = 0; x < kWide; ++x) {
                const XYZ place{(x + 0.5) / kWide * 2 * kHalfWidth - kHalfWidth,
                                (y + 0.5) / kHigh * 2 * kHalfHeight - kHalfHeight, kDepth};
                if (NearEdge(place)) {
                    continue;
                }
                const RGB wanted = LitColour(surface, lights, place, Unit(normal));
                const uint8_t* const pixel = &seen[(size_t{y} * kWide + x) * 4];
                const double channels[3] = {wanted.r, wanted.g, wanted.b};
                for (int channel = 0; channel < 3; ++channel) {
                    const int value = static_cast<int>(
                        std::lround(std::clamp(channels[channel], 0.0, 1.0) * 255));
                    largest = std::max(largest, std::abs(value - pixel[channel]));
                }
                ASSERT_EQ(pixel[3], 255);
            }
        }
        EXPECT_LE(largest, tolerance);
    }

    // A pixel on the edge of a cone or a ball may fall on either side.
    bool NearEdge(XYZ place) const {
        constexpr double kAngle = 1e-4;
        constexpr double kDistance = 1e-3;
        return std::any_of(lights.begin(), lights.end(), [&](const LIGHT& light) {
            const XYZ way = place - light.pos;
            const double d = std::sqrt(Times(way, way));
            return light.spot &&
                   (std::abs(Times(Unit(way), light.direction) - light.cosCutoff) < kAngle ||
                    std::abs(d - light.ball) < kDistance);
        });
    }

    static constexpr double kDepth = -60;
    const RGB texel{0x40 / 255.0, 0x60 / 255.0, 0x80 / 255.0};
    // Rounding to a byte may go the other way; a power is computed from an approximate logarithm.
    static constexpr int kExact = 1;
    static constexpr int kPower = 2;

    RoomPainter painter;
    TEXTURE_RECORD texture{};
    std::vector<LIGHT> lights;
    uint32_t uniformWrites = 0; // of the two scenes
};

TEST_F(LightFormula, WithoutLightsAllIsBlackButATelevision) {
    ExpectFormula({.texture = texel}, 0);
    ExpectFormula(
        {
            .diffuse = {1,   0.5, 0.25},
              .emission = {0.2, 0.2, 0.2 }
    },
        0);
    ExpectFormula({.texture = texel, .fTV = 0.8}, kExact);
}

TEST_F(LightFormula, LampLightsTexturesAndPlainColours) {
    AddLamp({10, 5, -20});
    ExpectFormula({.texture = texel}, kExact);
    ExpectFormula(
        {
            .diffuse = {0.9, 0.5, 0.1}
    },
        kExact);
    ExpectFormula(
        {
            .diffuse = {0.3, 0.2, 0.1},
              .emission = {0.5, 0.5, 0.5}
    },
        kExact);
    ExpectFormula(
        {
            .texture = texel, .emission = {0.25, 0.25, 0.25}
    },
        kExact);
}

TEST_F(LightFormula, SurfaceThatFacesAwayHasTheLampsAmbientLightAlone) {
    AddLamp({10, 5, -20});
    ExpectFormula(
        {
            .diffuse = {0.9, 0.5, 0.1},
              .specular = {1,   1,   1  },
              .shininess = 20
    },
        kExact, {0, 0, -1});
}

TEST_F(LightFormula, NormalsNeedNotHaveLengthOne) {
    AddLamp({10, 5, -20});
    ExpectFormula(
        {
            .diffuse = {0.9, 0.5, 0.1}
    },
        kExact, {1, 2, 3});
}

TEST_F(LightFormula, GlossMirrorsTheLamp) {
    AddLamp({10, 5, -20});
    for (const double shininess : {1.0, 6.0, 30.0}) {
        ExpectFormula(
            {
                .diffuse = {0.2, 0.1, 0.1},
                  .specular = {0.9, 0.8, 0.7},
                  .shininess = shininess
        },
            kPower);
    }
    ExpectFormula(
        {
            .diffuse = {0.2, 0.1, 0.1},
              .specular = {0.9, 0.8, 0.7},
              .shininess = 0
    },
        kExact);
}

TEST_F(LightFormula, TelevisionShinesIntoItsCone) {
    // Straight at the plane from 20 off: the cone of 55 degrees covers the middle, the rest is dim.
    AddTelevision({0.9, 0.4, 0.2}, {5, 0, -40}, {0, 0, -1}, 0, 55, 80);
    ExpectFormula({.texture = texel}, kExact);
    ExpectFormula(
        {
            .diffuse = {0.2, 0.1, 0.1},
              .specular = {0.9, 0.8, 0.7},
              .shininess = 12
    },
        kPower);
}

TEST_F(LightFormula, TelevisionShinesToAllSidesWithinItsBall) {
    // It faces away, so all of the plane is outside the cone, and within 35 of it inside the ball.
    AddTelevision({0.3, 0.4, 1.05}, {0, 0, -40}, {0, 0, 1}, 35, 70, 50);
    ExpectFormula({.texture = texel}, kExact);
    ExpectFormula(
        {
            .diffuse = {0.1, 0.1, 0.1},
              .specular = {1,   1,   1  },
              .shininess = 12
    },
        kExact);
}

TEST_F(LightFormula, DirectionNeedNotHaveLengthOne) {
    AddTelevision({0.9, 0.9, 0.9}, {0, 10, -45}, {0, -0.2, -1}, 10, 55, 50);
    ExpectFormula({.texture = texel}, kExact);
}

TEST_F(LightFormula, PictureOnATelevisionTakesLittleLight) {
    AddLamp({10, 5, -20});
    AddTelevision({0.9, 0.4, 0.2}, {5, 0, -40}, {0, 0, -1}, 20, 55, 80);
    ExpectFormula({.texture = texel, .fTV = 0.65}, kExact);
    ExpectFormula(
        {
            .texture = texel, .specular = {0.9, 0.8, 0.7},
                 .shininess = 12, .fTV = 0.8
    },
        kPower);
}

TEST_F(LightFormula, FiveLightsAddUp) {
    AddLamp({10, 5, -20});
    AddTelevision({0.2, 0.1, 0.05}, {-20, -10, -45}, {0, 0, -1}, 50, 70, 80);
    AddTelevision({0.1, 0.2, 0.05}, {20, -10, -45}, {0, 0, 1}, 0, 70, 80);
    AddTelevision({0.05, 0.1, 0.2}, {0, 20, -50}, {0, -0.2, -1}, 4.5, 85, 20);
    AddTelevision({0.1, 0.1, 0.1}, {30, 20, -55}, {-1, 0, 0}, 60, 55, 50);
    ExpectFormula({.texture = texel}, kExact);
    ExpectFormula(
        {
            .diffuse = {0.2, 0.1, 0.3},
              .specular = {0.3, 0.3, 0.3},
              .shininess = 9
    },
        kPower);
    ExpectFormula({.texture = texel, .fTV = 0.5}, kExact);
}

TEST_F(LightFormula, FiveTelevisionsWithoutTheLamp) {
    for (int i = 0; i < 5; ++i) {
        AddTelevision({0.1 * i, 0.2, 0.1}, {i * 15.0 - 30, 0, -40}, {0, 0, -1}, 20, 55, 80);
    }
    ExpectFormula({.texture = texel}, kExact);
}

TEST_F(LightFormula, OnlyLightsBeforeTheFirstDisabledOneShine) {
    AddLamp({10, 5, -20});
    // A light at index 2 without one at index 1.
    COLOUR_HISTORY white;
    white.light = {1, 1, 1};
    painter.Program().SetLight(2, 80, white, {0, 0, -40}, {0, 0, -1}, 50, 70);
    EXPECT_EQ(painter.Program().LightCount(), 1U);
    ExpectFormula({.texture = texel}, kExact);
}

TEST_F(LightFormula, LightsOfTheLastFrameAreForgotten) {
    AddLamp({10, 5, -20});
    AddTelevision({0.9, 0.4, 0.2}, {5, 0, -40}, {0, 0, -1}, 0, 55, 80);
    ExpectFormula({.texture = texel}, kExact);
    painter.Program().ClearLights();
    lights.clear();
    AddTelevision({0.2, 0.4, 0.9}, {-5, 0, -40}, {0, 0, -1}, 0, 70, 20);
    ExpectFormula({.texture = texel}, kExact);
    painter.Program().ClearLights();
    lights.clear();
    ExpectFormula({.texture = texel}, 0);
}

TEST_F(LightFormula, ShapesOfLightsAreThoseOfTheirKind) {
    COLOUR_HISTORY colours;
    colours.light = {0.1f, 0.2f, 0.3f};
    LightProgram& program = painter.Program();
    program.SetLamp(0, {1, 2, 3});
    program.SetLight(1, 80, colours, {4, 5, 6}, {0, -0.2f, 1}, 50, 60);
    const ROOM_LIGHT& lamp = program.Lights()[0];
    EXPECT_THAT(lamp.color, testing::ElementsAre(0.6f, 0.6f, 0.6f, 1));
    EXPECT_THAT(lamp.specular, testing::ElementsAre(0.5f, 0.5f, 0.5f, 1));
    EXPECT_EQ(lamp.shape.linearAttenuation, 0.00005f);
    EXPECT_EQ(lamp.shape.quadraticAttenuation, 0.000008f);
    const ROOM_LIGHT& television = program.Lights()[1];
    EXPECT_THAT(television.color, testing::ElementsAre(0.1f, 0.2f, 0.3f, 1));
    EXPECT_EQ(television.specular, television.color);
    EXPECT_EQ(television.shape.direction, (VECTOR3{0, -0.2f, 1})) << "its length stays";
    EXPECT_FLOAT_EQ(television.shape.spotCosCutoff, 0.5f);
    EXPECT_EQ(television.shape.spotBall, 50);
    EXPECT_EQ(television.shape.linearAttenuation, 0.01f);
    EXPECT_FLOAT_EQ(television.shape.quadraticAttenuation, 0.00002f);
}

TEST_F(LightFormula, ManySetsOfLightsComeAndGo) {
    // More than are kept compiled, twice over.
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 10; ++i) {
            painter.Program().ClearLights();
            lights.clear();
            AddLamp({3.0 * i, 5, -20});
            ExpectFormula({.texture = texel}, kExact);
        }
    }
}

TEST_F(LightFormula, SettingTurnsTheLightsOff) {
    AddLamp({10, 5, -20});
    Settings().SetBool(L"app_lighting", false);
    // Evenly bright, in the surface's own colour.
    const auto expectEven = [&](const SURFACE& surface, RGB colour) {
        lights.clear();
        SURFACE even = surface;
        even.fTV = 0;
        const auto f = [](double value) { return static_cast<float>(value); };
        const std::array<float, 9> places{-99, -99, -60, 299, -99, -60, -99, 299, -60};
        const std::array<float, 9> normals{0, 0, 1, 0, 0, 1, 0, 0, 1};
        const std::array<float, 6> coordinates{};
        const std::array<uint16_t, 3> indices{0, 1, 2};
        ClearScreen(kBlack);
        glViewport(0, 0, kWide, kHigh);
        glEnable(GL_TEXTURE_2D);
        painter.BeginScene(EvenProjection(), kIdentity);
        painter.SetArrays({0, places.data(), normals.data(), coordinates.data()});
        painter.SetMaterial({
            {f(even.diffuse.r),  f(even.diffuse.g), f(even.diffuse.b)},
            {                 },
            0, 0
        });
        painter.BindTexture(even.texture.r > 0 ? &texture : nullptr);
        painter.DrawTriangles(0, indices.data(), 3);
        EXPECT_EQ(painter.Counters().programChanges, 0U);
        painter.EndScene();
        glDisable(GL_TEXTURE_2D);
        uint8_t pixel[4]{};
        glReadPixels(20, 20, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        EXPECT_NEAR(pixel[0], colour.r * 255, 1);
        EXPECT_NEAR(pixel[1], colour.g * 255, 1);
        EXPECT_NEAR(pixel[2], colour.b * 255, 1);
    };
    expectEven({.texture = texel}, texel);
    expectEven(
        {
            .diffuse = {0.9, 0.5, 0.1}
    },
        {0.9, 0.5, 0.1});
}

TEST_F(LightFormula, OnlyColoursThatChangeAreWritten) {
    const auto addTelevision = [&](double red) {
        painter.Program().ClearLights();
        lights.clear();
        AddTelevision({red, 0.4, 0.2}, {5, 0, -40}, {0, 0, -1}, 0, 55, 80);
    };
    addTelevision(0.9);
    ExpectFormula({.texture = texel}, kExact);
    addTelevision(0.9);
    ExpectFormula({.texture = texel}, kExact);
    EXPECT_EQ(uniformWrites, 0U);
    addTelevision(0.5);
    ExpectFormula({.texture = texel}, kExact);
    EXPECT_EQ(uniformWrites, 1U);
}

TEST_F(LightFormula, NewLightsCompileNothingInTheirFirstSceneAndOneFormInEachLaterOne) {
    painter.Release();
    ROOM_SERVICES services = Services();
    services.loader = [](const char* name) -> void* {
        void* const found = WindowLibraryLoader(name);
        if (std::string_view(name) != "glLinkProgram") {
            return found;
        }
        gLinkProgram = reinterpret_cast<PFNGLLINKPROGRAMPROC>(found);
        return reinterpret_cast<void*>(CountLink);
    };
    painter.Start(services);
    AddLamp({10, 5, -20});
    AddTelevision({0.9, 0.4, 0.2}, {5, 0, -40}, {0, 0, -1}, 0, 55, 80);
    const SURFACE wall{
        .diffuse = {0.9, 0.5, 0.1}
    };
    const std::array<float, 9> corners{-9, -9, -60, 9, -9, -60, -9, 9, -60};
    const std::array<uint16_t, 3> indices{0, 1, 2};
    const auto scene = [&] { // of three kinds of surfaces
        gProgramsLinked = 0;
        painter.BeginScene(EvenProjection(), kView);
        painter.SetArrays({0, corners.data(), corners.data(), corners.data()});
        for (const float shininess : {0.0f, 9.0f}) {
            painter.SetMaterial({
                {1, 1, 1},
                {1, 1, 1},
                0, shininess
            });
            painter.DrawTriangles(0, indices.data(), 3);
        }
        painter.BindTexture(&texture);
        painter.DrawTriangles(0, indices.data(), 3);
        painter.EndScene();
        return gProgramsLinked;
    };
    EXPECT_EQ(scene(), 0U);
    EXPECT_EQ(scene(), 1U);
    EXPECT_EQ(scene(), 1U);
    EXPECT_EQ(scene(), 1U);
    EXPECT_EQ(scene(), 0U);
    DrawAndCompare(wall, kExact, {0, 0, 1});
}

TEST_F(LightFormula, LightsWhoseFormCannotBeCompiledAreThoseOfTheFormula) {
    painter.Release();
    ROOM_SERVICES services = Services();
    services.loader = [](const char* name) -> void* {
        // Start compiles one form; the driver fails at all others.
        void* const found = WindowLibraryLoader(name);
        if (std::string_view(name) != "glGetProgramInfoLog") {
            return found;
        }
        gProgramLogs = 0;
        gGetProgramLog = reinterpret_cast<PFNGLGETPROGRAMINFOLOGPROC>(found);
        return reinterpret_cast<void*>(FailAfterTheFirst);
    };
    painter.Start(services);
    ASSERT_TRUE(painter.Program().Works());
    AddLamp({10, 5, -20});
    ExpectFormula({.texture = texel}, kExact);
    EXPECT_EQ(gProgramLogs, 2U);
}

class LightProgramStart : public RoomGlTest {
protected:
    LightProgram program;
    std::string error;
};

TEST_F(LightProgramStart, CompilerWhoseLogSaysErrorLeavesTheProgramOff) {
    GL_FUNCTIONS functions = LoadGlFunctions(WindowLibraryLoader);
    ASSERT_TRUE(program.Start(functions, error)) << error;
    functions.getShaderInfoLog = WriteErrorLog;
    EXPECT_FALSE(program.Start(functions, error));
    EXPECT_FALSE(program.Works());
    EXPECT_THAT(error, testing::HasSubstr("compiled: line 3: ERROR: no such thing"));
    ROOM_COUNTERS counters;
    program.Use({}, counters);
    EXPECT_EQ(counters.programChanges, 0U);
}

TEST_F(LightProgramStart, LinkerWhoseLogSaysErrorLeavesTheProgramOff) {
    GL_FUNCTIONS functions = LoadGlFunctions(WindowLibraryLoader);
    functions.getProgramInfoLog = WriteErrorLog;
    EXPECT_FALSE(program.Start(functions, error));
    EXPECT_THAT(error, testing::HasSubstr("linked: line 3: ERROR"));
}

TEST_F(LightProgramStart, EveryListedEntryPointIsNeededButOne) {
    const char* const needed[] = {"glCreateProgram",    "glAttachShader",       "glLinkProgram",
                                  "glUseProgram",       "glCreateShader",       "glShaderSource",
                                  "glCompileShader",    "glGetProgramInfoLog",  "glUniform1i",
                                  "glGetShaderInfoLog", "glGetUniformLocation", "glUniform1f",
                                  "glUniform4f",        "glUniformMatrix4fv"};
    const auto without = [](const std::string& missing) {
        return LoadGlFunctions([missing](const char* name) {
            return missing == name ? nullptr : WindowLibraryLoader(name);
        });
    };
    for (const char* const name : needed) {
        EXPECT_EQ(without(name).useProgram, nullptr) << name;
        EXPECT_FALSE(program.Start(without(name), error)) << name;
        EXPECT_THAT(error, testing::HasSubstr("no shaders"));
    }
    EXPECT_TRUE(program.Start(without("glActiveTexture"), error)) << error;
}

TEST_F(LightProgramStart, BuffersComeTogetherOrNotAtAll) {
    for (const char* const missing :
         {"glGenBuffers", "glBindBuffer", "glBufferData", "glDeleteBuffers"}) {
        const GL_FUNCTIONS functions = LoadGlFunctions([missing](const char* name) {
            return std::string_view(missing) == name ? nullptr : WindowLibraryLoader(name);
        });
        EXPECT_EQ(functions.genBuffers, nullptr) << missing;
        EXPECT_EQ(functions.bindBuffer, nullptr) << missing;
        EXPECT_NE(functions.useProgram, nullptr) << missing;
    }
    EXPECT_EQ(LoadGlFunctions(nullptr).useProgram, nullptr);
}

} // namespace
