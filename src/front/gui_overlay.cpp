#include "front/gui_overlay.h"

#include "display/gl.h"
#include "front/event_pump.h"
#include "gui/edit.h"
#include "gui/keyboard.h"
#include "gui/manager.h"
#include "gui/window.h"
#include "host/host_data.h"

#include <SDL_keyboard.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

// Whether what the player types goes into a field of text.
bool TypedInto(const GHOSTMANAGER_WINDOW* focus) {
    const CGhostGUIHandler* handler = focus != nullptr ? focus->handler : nullptr;
    for (; handler != nullptr; handler = handler->next) {
        const auto* const edit = dynamic_cast<const CGhostEdit*>(handler);
        if ((edit != nullptr && !edit->IsReadOnly()) ||
            dynamic_cast<const CGhostKeyboard*>(handler) != nullptr) {
            return true;
        }
    }
    return false;
}

// What a key itself types, by which a list finds its rows. While a field has the focus its text comes apart from the
// keys.
int32_t LetterOf(const GUI_INPUT& key) {
    constexpr uint32_t kFirst = 32; // below are controls, such as return
    constexpr uint32_t kDelete = 127;
    const bool letter = key.character >= kFirst && key.character != kDelete;
    return letter && SDL_IsTextInputActive() == SDL_FALSE ? static_cast<int32_t>(key.character) : 0;
}

} // namespace

void PostGuiInput(const GUI_INPUT& input) {
    // The toolkit counts the middle button as the third.
    constexpr std::array<int32_t, 4> kButtons = {0, 1, 3, 2};
    CGhostManager& manager = CGhostManager::Get();
    const auto units = [&](int32_t pixels) {
        return static_cast<int32_t>(std::floor(pixels / manager.Density()));
    };
    GUI_INPUT_RECORD record;
    record.button = input.button < kButtons.size() ? kButtons[input.button] : 0;
    record.key = static_cast<int32_t>(input.key);
    switch (input.kind) {
    case GuiInputKind::kMouseMove:
        record.moved = true;
        record.dx = units(input.x) - manager.CursorX();
        record.dy = units(input.y) - manager.CursorY();
        break;
    case GuiInputKind::kMouseDown: record.buttonDown = record.button != 0; break;
    case GuiInputKind::kMouseUp: record.buttonUp = record.button != 0; break;
    case GuiInputKind::kWheel:
        record.wheel = true;
        record.button = input.wheel < 0 ? 1 : 0;
        break;
    case GuiInputKind::kKeyDown:
        record.keyDown = true;
        record.repeat = input.repeat;
        record.character = LetterOf(input);
        break;
    case GuiInputKind::kKeyUp: record.keyUp = true; break;
    case GuiInputKind::kText: record.character = static_cast<int32_t>(input.character); break;
    }
    manager.PostInput(record, static_cast<uint64_t>(HostClock().nowMicroseconds() / 1000));
}

void GuiOverlay::Start(const DRAW_TARGET& target, SceneDrawing drawScene) {
    End();
    scene = std::move(drawScene);
    CGhostManager::Get().SetHost({
        [this](uint32_t id, int32_t width, int32_t height) { textures.Create(id, width, height); },
        [this](uint32_t id) { textures.Destroy(id); },
        [this](uint32_t id, const uint32_t* pixels, int32_t stride) {
            textures.Upload(id, pixels, stride);
        },
        [this](uint32_t id, uint32_t flags, int32_t sourceX, int32_t sourceY, int32_t x, int32_t y,
               int32_t width, int32_t height) {
            if (id == kCompositeStart) { // the picture below has been drawn
                return;
            }
            textures.Draw(id, sourceX, sourceY, x, y, width, height);
            if (flags == kWindowBackgroundPass) {
                DrawScene(id, {x - sourceX, y - sourceY, 0, 0, x, y, width, height});
            }
        },
    });
    CGhostManager::Get().SetPaintLimit(kSmoothPaintLimit);
    started = true;
    size = target;
    lastTick = HostClock().nowMicroseconds();
    CGhostManager::Get().SetScreen(static_cast<int32_t>(size.width),
                                   static_cast<int32_t>(size.height));
}

void GuiOverlay::End() {
    if (started) {
        started = false;
        CGhostManager::Get().SetHost({});
        CGhostManager::Get().SetPaintLimit(0);
        textures.End();
        cursors.End();
    }
}

void GuiOverlay::DrawScene(uint32_t id, const WINDOW_PLACE& place) {
    WINDOW_PLACE whole = place;
    if (scene && textures.Size(id, whole.width, whole.height)) {
        scene(whole);
        Ortho2D(size.width, size.height);
    }
}

bool GuiOverlay::Update(const PUMP_EVENTS& events, const DRAW_TARGET& target, int64_t now) {
    CGhostManager& manager = CGhostManager::Get();
    if (target.width != size.width || target.height != size.height) {
        size = target;
        manager.SetScreen(static_cast<int32_t>(size.width), static_cast<int32_t>(size.height));
    }
    for (const GUI_INPUT& input : events.gui) {
        PostGuiInput(input);
    }
    constexpr int64_t kLongestTick = 1000000; // after a standstill
    manager.Tick(static_cast<uint32_t>(std::clamp<int64_t>(now - lastTick, 0, kLongestTick)));
    lastTick = now;
    manager.ReturnFocusToTabStop();
    cursors.Update();
    TakeText(TypedInto(manager.FocusWindow()));
    return !manager.DirtyRect().Empty();
}

// On only while a field has the focus: an input method would swallow the keys of everything else.
void GuiOverlay::TakeText(bool wanted) {
    if ((SDL_IsTextInputActive() == SDL_TRUE) == wanted) {
        return;
    }
    if (wanted) {
        SDL_StartTextInput();
    } else {
        SDL_StopTextInput();
    }
}

void GuiOverlay::Draw() {
    CGhostManager::Get().CompositeAll();
}
