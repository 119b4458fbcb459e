#include "room/room_renderer.h"

#include "base/random.h"
#include "display/gl.h"
#include "room/room_objects.h"
#include "room/transform.h"

#include <algorithm>
#include <vector>

namespace {

constexpr VECTOR3 kLampLight{250.0f, 250.0f, 400.0f};
constexpr VECTOR3 kFixturePlace{250.0f, 257.0f, 400.0f};
constexpr VECTOR3 kLogoPlace{5.0f, 220.0f, 400.0f};
constexpr float kLogoRotation = 90.0f;
constexpr float kFlickerStep = 0.02f;

// A screen that flickers goes a step down or up at random, never above its brightness.
float Brightness(CRoomObject& object) {
    const CRoomObjectType& type = *object.type;
    float brightness = type.brightness;
    if (type.flickerAmplitude > 0.0f && type.flickerModulus > 0) {
        const uint32_t drawn = static_cast<uint32_t>(RandomNumber()) % type.flickerModulus;
        if (drawn == 0) {
            object.flicker -= kFlickerStep;
        } else if (drawn == 1) {
            object.flicker += kFlickerStep;
        }
        object.flicker = std::clamp(object.flicker, -type.flickerAmplitude, 0.0f);
        brightness += object.flicker;
    }
    return brightness;
}

// By the depth of their middles.
std::vector<CRoomObject*> NearestFirst(const MATRIX4& view, const CRoomObjects& objects) {
    std::vector<CRoomObject*> sorted;
    for (const std::unique_ptr<CRoomObject>& object : objects.All()) {
        sorted.push_back(object.get());
    }
    std::ranges::stable_sort(sorted, {}, [&](const CRoomObject* object) {
        return -TransformPoint(view, CentreOf(*object)).z;
    });
    return sorted;
}

} // namespace

void Perspective(int32_t x, int32_t y, int32_t width, int32_t height) {
    glViewport(x, y, width, height);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glHint(GL_GENERATE_MIPMAP_HINT, GL_NICEST);
    glShadeModel(GL_SMOOTH);
}

void RoomRenderer::InitRoom(const ROOM_SERVICES& roomServices) {
    Release();
    services = roomServices;
    painter.Start(services);
    covers.Start([this](std::string_view file) { return LoadModel(file); });
    shell.Start(painter);
    lightFixture = LoadModel("lightfixture.3ds");
    logo = LoadModel("ombrelune.3ds");
}

void RoomRenderer::Release() {
    covers.End();
    lightFixture.reset();
    logo.reset();
    painter.Release();
}

std::unique_ptr<Model_3DS> RoomRenderer::LoadModel(std::string_view file) {
    const std::vector<uint8_t> bytes =
        services.readFile ? services.readFile(file) : std::vector<uint8_t>();
    if (bytes.empty()) {
        return nullptr;
    }
    auto model = std::make_unique<Model_3DS>();
    std::string error;
    if (!model->Load(bytes.data(), bytes.size(), file, error)) {
        const std::vector<uint8_t> spare =
            SpareFile(services.readSpare, services.report, file, bytes, error);
        if (!model->Load(spare.data(), spare.size(), file, error)) {
            return nullptr;
        }
    }
    model->Prepare(painter);
    return model;
}

// The lamp first; then the televisions that are on, in their fixed order, while there are lights left.
void RoomRenderer::SetLights(const ROOM_SCENE& scene, CRoomObjects& objects) {
    LightProgram& program = painter.Program();
    program.ClearLights();
    size_t next = 0;
    if (scene.ceilingLight) {
        program.SetLamp(next++, kLampLight);
    }
    for (const uint32_t id : objects.Televisions()) {
        const CRoomObject* const object = id != 0 ? objects.Find(id) : nullptr;
        if (next >= kMostLights || object == nullptr || !object->on) {
            continue;
        }
        const CRoomObjectType& type = *object->type;
        program.SetLight(next++, type.falloff, object->colours, LightOf(*object), object->direction,
                         type.ball, type.cutoffAngle);
    }
}

void RoomRenderer::DrawObject(CRoomObject& object) {
    Model_3DS* const model = object.type->model.get();
    if (model == nullptr) {
        return;
    }
    model->Prepare(painter);
    const bool shows = object.type->isScreen && object.on && object.changed;
    model->SetOverride(shows);
    if (shows) {
        model->AttachPicture(object.texture, object.picture, Brightness(object));
    }
    painter.SetTransform(Multiply(Translation(CentreOf(object)), RotationAboutY(object.rotation)));
    model->Draw(painter);
}

void RoomRenderer::DrawModel(const std::unique_ptr<Model_3DS>& model, const MATRIX4& transform) {
    if (model != nullptr) {
        painter.SetTransform(transform);
        model->Draw(painter);
    }
}

// Depth decides what is seen. The nearest come first and the box, which surrounds all else, last, so that little
// is lit that something else then hides.
void RoomRenderer::Draw(const ROOM_SCENE& scene, CRoomObjects& objects) {
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    Perspective(0, 0, static_cast<int32_t>(scene.screenWidth),
                static_cast<int32_t>(scene.screenHeight));
    SetLights(scene, objects);
    painter.BeginScene(scene.projection, scene.view);
    for (CRoomObject* const object : NearestFirst(scene.view, objects)) {
        DrawObject(*object);
    }
    DrawModel(lightFixture, Translation(kFixturePlace));
    DrawModel(logo, Multiply(Translation(kLogoPlace), RotationAboutY(kLogoRotation)));
    painter.Flush();
    shell.Draw(painter);
    shell.DrawPictures(painter);
    painter.EndScene();
    counters = painter.Counters();
    glDisable(GL_LIGHTING);
    Ortho2D(scene.screenWidth, scene.screenHeight);
}
