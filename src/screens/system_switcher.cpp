#include "screens/system_switcher.h"

#include "facts/machine_facts.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"

namespace {

// Units.
constexpr int32_t kFaceWidth = 192;
constexpr int32_t kFaceHeight = 96;
constexpr int32_t kArrow = 40;
constexpr int32_t kGap = 20;

} // namespace

const std::array<SYSTEM_FACE, kSystems>& SystemFaces() {
    static constexpr std::array<SYSTEM_FACE, kSystems> kFaces = {
        {
         {kSystemMasterSystem, L"MASTERSYSTEM", L"Sega Master System (SMS)"},
         {kSystemGameGear, L"GAMEGEAR", L"Game Gear (GG)"},
         {kSystemNes, L"NES", L"Nintendo (NES)"},
         {kSystemArcade, L"ARCADE", L"Arcade"},
         {kSystemMegaDrive, L"MEGADRIVE", L"Genesis / Megadrive (MD)"},
         }
    };
    return kFaces;
}

SystemSwitcher::SystemSwitcher(GHOSTMANAGER_WINDOW* parent, std::function<void(int)> step)
    : left(new CGhostButton(parent, 0, L"LEFTSEL", L"", 0, {}))
    , right(new CGhostButton(parent, 0, L"RIGHTSEL", L"", 0, {}))
    , name(new CGhostTextBox(parent, 0, L"TEXT_CENTER", L"", {})) {
    for (size_t i = 0; i < kSystems; ++i) {
        faces[i] = new CGhostWindowEx(parent, 0, SystemFaces()[i].style, L"",
                                      CGhostWindowEx::kNoSignals, {});
        faces[i]->SetVisible(false);
    }
    left->SetToolTip(L"The system before");
    right->SetToolTip(L"The next system");
    signals.Watch(left->OnClick, [step](CGhostButton*, int, int, unsigned) { step(-1); });
    signals.Watch(right->OnClick, [step](CGhostButton*, int, int, unsigned) { step(1); });
    Show(0);
}

SystemSwitcher::~SystemSwitcher() {
    CGhostManager& manager = CGhostManager::Get();
    for (CGhostWindowEx* const face : faces) {
        manager.DestroyWindow(face->window);
    }
    manager.DestroyWindow(left->window);
    manager.DestroyWindow(right->window);
    manager.DestroyWindow(name->window);
}

void SystemSwitcher::Layout(int32_t x, int32_t y) {
    const int32_t arrowY = y + (kFaceHeight - kArrow) / 2;
    left->SetPos(x, arrowY, kArrow, kArrow);
    right->SetPos(x + kWidth - kArrow, arrowY, kArrow, kArrow);
    for (CGhostWindowEx* const face : faces) {
        face->SetPos(x + kArrow + kGap, y, kFaceWidth, kFaceHeight);
    }
    name->SetPos(x, y + kFaceHeight + 2, kWidth, 20);
}

void SystemSwitcher::Show(size_t selector) {
    faces[shown]->SetVisible(false);
    shown = selector;
    faces[shown]->SetVisible(visible);
    name->SetText(SystemFaces()[shown].name);
}

void SystemSwitcher::SetVisible(bool wanted) {
    visible = wanted;
    left->SetVisible(visible);
    right->SetVisible(visible);
    name->SetVisible(visible);
    faces[shown]->SetVisible(visible);
}
