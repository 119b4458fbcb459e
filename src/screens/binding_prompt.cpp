#include "screens/binding_prompt.h"

#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "settings/bindings.h"

#include <utility>

namespace {

constexpr uint64_t kSecond = 1000000; // microseconds
constexpr uint64_t kPatience = 10;    // seconds

// Units.
constexpr int32_t kBoxWidth = 560;
constexpr int32_t kBoxHeight = 170;

} // namespace

BindingPrompt::BindingPrompt(const std::wstring& what, const std::wstring& before,
                             bool forProgramAction, UseOfKey useOfProgramsKey, Done whenDone)
    : DimmedBox(L"Set Input")
    , capture(forProgramAction)
    , useOfKey(std::move(useOfProgramsKey))
    , done(std::move(whenDone))
    , binding(before) {
    GHOSTMANAGER_WINDOW* const within = Box()->window;
    title = new CGhostTextBox(within, 0, L"SECTIONTEXT", what, {});
    wanted =
        new CGhostTextBox(within, 0, L"SECTIONTEXT", L"Press a key, a button or a direction", {});
    keeps = new CGhostTextBox(within, 0, L"TEXT_CENTER", {}, {});
    for (GHOSTMANAGER_WINDOW* const part : {title->window, wanted->window, keeps->window}) {
        CGhostManager::Get().SetPart(part);
    }
    Box()->OnDown.connect([this](CGhostWindowEx*, int, int, unsigned) { End(std::nullopt); });
    for (CGhostTextBox* const text : {title, wanted, keeps}) {
        text->OnDown.connect([this](CGhostTextBox*, int, int, unsigned) { End(std::nullopt); });
    }
    Place();
    ShowSecondsLeft();
    TakeInput();
}

BindingPrompt::~BindingPrompt() {
    End(std::nullopt);
}

void BindingPrompt::Place() {
    PlaceBox(kBoxWidth, kBoxHeight);
    const GUI_RECT client = Client();
    title->SetPos(0, 8, client.width, 25);
    wanted->SetPos(0, 40, client.width, 25);
    keeps->SetPos(0, 76, client.width, 20);
}

void BindingPrompt::ShowSecondsLeft() {
    const uint64_t left = kPatience - waited / kSecond;
    if (left == secondsLeft) {
        return;
    }
    secondsLeft = left;
    keeps->SetText(L"Escape, a click or " + std::to_wstring(left) +
                   (left == 1 ? L" second" : L" seconds") + L" without an input keep " + binding);
}

void BindingPrompt::Look() {
    if (CGhostManager::Get().ModalWindow() == window) {
        Take(capture.LookAtJoysticks());
    }
}

void BindingPrompt::Abandon() {
    done = nullptr;
    End(std::nullopt);
}

void BindingPrompt::OnTick(unsigned microseconds) {
    DimmedBox::OnTick(microseconds);
    waited += microseconds;
    if (waited >= kPatience * kSecond) {
        End(std::nullopt);
        return;
    }
    ShowSecondsLeft();
}

void BindingPrompt::OnKeyDown(GHOSTGUIKey key) {
    if (key == GHOSTGUIKey::kEscape) {
        End(std::nullopt);
    } else {
        Take(capture.KeyDown(static_cast<uint32_t>(key)));
    }
}

void BindingPrompt::OnKeyUp(GHOSTGUIKey key) {
    Take(capture.KeyUp(static_cast<uint32_t>(key)));
}

void BindingPrompt::OnMouseDown(int /*x*/, int /*y*/, unsigned /*button*/) {
    End(std::nullopt);
}

void BindingPrompt::Take(std::optional<uint32_t> input) {
    if (input && !Refuses(*input)) {
        End(input);
    }
}

// The program's keys act without ctrl alone; with it they are free.
bool BindingPrompt::Refuses(uint32_t input) {
    constexpr uint32_t kJoystick = 1u << 24;
    constexpr uint32_t kScancode = 0xFFFF;
    if ((input & kJoystick) != 0 || input >> 16 == kModifierCtrl) {
        return false;
    }
    const uint32_t scancode = input & kScancode;
    const std::wstring use = useOfKey ? useOfKey(scancode) : std::wstring();
    if (use.empty()) {
        return false;
    }
    wanted->SetText(BindingName(KeyboardBinding(scancode)) + L" is taken: " + use +
                    L". Press another one");
    waited = 0;
    return true;
}

void BindingPrompt::End(std::optional<uint32_t> result) {
    if (ended) {
        return;
    }
    ended = true;
    if (done) {
        done(result);
    }
    Close();
}
