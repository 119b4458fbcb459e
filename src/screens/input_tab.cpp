#include "screens/input_tab.h"

#include "facts/machine_facts.h"
#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "gui/text_box.h"
#include "screens/binding_prompt.h"
#include "screens/input_list.h"
#include "screens/screen_host.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <utility>

namespace {

// Units.
constexpr int32_t kMargin = 16;
constexpr int32_t kGap = 12;
constexpr int32_t kHigh = 25;
constexpr int32_t kListTop = 76;
constexpr int32_t kFoot = kMargin + kHigh; // from the lower edge to the top of the last row
constexpr int32_t kSystemsWide = 260;
constexpr int32_t kWideButton = 180;
constexpr int32_t kButton = 100;
constexpr int32_t kBar = 20; // of the list's scrollbar and frame, which the columns leave free
constexpr int32_t kDropHeight = 200;

constexpr int32_t kTroubleImage = 4; // in the list's strip of images

// The machine that the browser showed last.
int32_t LastSystem() {
    const auto machines = MachineFacts();
    const auto at = static_cast<size_t>(Settings().GetInt(L"gamebrowser_cursystem"));
    const auto all = InputSystems();
    for (size_t i = 0; i < all.size() && at < machines.size(); ++i) {
        if (all[i].facts->system == machines[at].system) {
            return static_cast<int32_t>(i);
        }
    }
    return 0;
}

std::wstring Counted(uint32_t count, const wchar_t* one, const wchar_t* more) {
    return std::to_wstring(count) + L" " + (count == 1 ? one : more);
}

} // namespace

InputTab::InputTab(GHOSTMANAGER_WINDOW* parent, ScreenHost& program)
    : host(program) {
    MakeControls(parent);
    for (const INPUT_SYSTEM& system : InputSystems()) {
        systems->AddItem(system.name);
    }
    const int32_t first = LastSystem();
    systems->SetSelected(first, false);
    ShowSystem(first);

    signals.Watch(systems->OnSelect,
                  [this](CGhostDropList*, int index, GHOSTLIST_ITEM*) { ShowSystem(index); });
    const auto watch = [this](CGhostButton* button, void (InputTab::*act)()) {
        signals.Watch(button->OnClick,
                      [this, act](CGhostButton*, int, int, unsigned) { (this->*act)(); });
    };
    watch(defaults, &InputTab::SetDefaults);
    watch(joysticks, &InputTab::ShowJoysticks);
    watch(clear, &InputTab::Clear);
    watch(undo, &InputTab::Undo);
    signals.Watch(list->OnChoose, [this](CGhostListView*, int, GHOSTLISTVIEW_ITEM*) { Ask(); });
    signals.Watch(list->OnClear, [this](InputList*) { Clear(); });
    signals.Watch(list->OnMoved, [this](InputList*) {
        said.clear();
        ShowStatus();
    });
}

InputTab::~InputTab() {
    if (prompt != nullptr) {
        prompt->Abandon();
    }
}

void InputTab::MakeControls(GHOSTMANAGER_WINDOW* parent) {
    const auto button = [parent](const wchar_t* caption, const wchar_t* help) {
        auto* const made = new CGhostButton(parent, 0, L"BUTTON", caption, 0, {});
        made->SetToolTip(help);
        return made;
    };
    systems = new CGhostDropList(parent, 0, L"DROPLIST", {}, kDropHeight, {});
    systems->SetToolTip(L"The machine whose inputs are listed, above those of Ombrelune itself.");
    defaults = button(L"Set Default Inputs",
                      L"Gives every action of every machine the input of a first start.");
    joysticks = button(L"Joystick Info", L"Lists the joysticks and game controllers in use.");
    note = new CGhostTextBox(parent, 0, L"TEXT_SMALL",
                             L"Double click the INPUT1 or INPUT2 column to set a new value", {});
    list = new InputList(parent, {});
    status = new CGhostTextBox(parent, 0, L"TEXT_SMALL", {}, {});
    clear = button(L"Clear", L"Leaves the framed input of the chosen action without a key.");
    undo = button(L"Undo", L"Takes back the last change of an input.");
    undo->SetEnabled(false);
}

void InputTab::Layout(int32_t width, int32_t height) {
    const int32_t right = width - kMargin;
    systems->SetPos(kMargin, kMargin, kSystemsWide, kHigh);
    joysticks->SetPos(right - kWideButton, kMargin, kWideButton, kHigh);
    defaults->SetPos(right - 2 * kWideButton - kGap, kMargin, kWideButton, kHigh);
    note->SetPos(kMargin, 48, width - 2 * kMargin, 20);
    const int32_t wide = width - 2 * kMargin;
    list->SetPos(kMargin, kListTop, wide, height - kListTop - kFoot - kGap);
    const int32_t input = (wide - kBar) * 3 / 10;
    list->SetColumnWidth(0, wide - kBar - 2 * input);
    list->SetColumnWidth(1, input);
    list->SetColumnWidth(2, input);
    undo->SetPos(right - kButton, height - kFoot, kButton, kHigh);
    clear->SetPos(right - 2 * kButton - kGap, height - kFoot, kButton, kHigh);
    status->SetPos(kMargin, height - kFoot, wide - 2 * kButton - 2 * kGap, kHigh);
}

void InputTab::Update() {
    if (prompt != nullptr) {
        prompt->Look();
    }
}

bool InputTab::TakeBack() {
    if (prompt == nullptr) {
        return false;
    }
    std::exchange(prompt, nullptr)->Abandon();
    return true;
}

// ---- What is shown.

void InputTab::ShowSystem(int32_t system) {
    said.clear();
    actions = ActionsOf(*InputSystems()[static_cast<size_t>(system)].facts);
    list->Clear();
    list->Reserve(static_cast<int32_t>(actions.size()));
    for (const size_t action : actions) {
        const int32_t row = list->AddRow();
        list->SetCell(row, 0, InputActions()[action].name);
    }
    ShowBindings();
    list->SetSelected(0);
}

void InputTab::ShowBindings() {
    for (size_t row = 0; row < actions.size(); ++row) {
        for (uint32_t input = 0; input < kActionInputs; ++input) {
            const uint32_t binding = ActionBinding(actions[row], input);
            const bool shared = !SharingBinding(actions, actions[row], input).empty();
            const int32_t column = InputList::kFirstInput + static_cast<int32_t>(input);
            list->SetCell(static_cast<int32_t>(row), column, BindingName(binding),
                          shared ? kTroubleImage : -1);
            list->Cell(static_cast<int32_t>(row), column)->colourSet = binding == 0 ? 1 : 0;
        }
    }
    ShowStatus();
}

void InputTab::ShowStatus() {
    status->SetText(StatusText());
}

std::wstring InputTab::StatusText() const {
    if (!said.empty()) {
        return said;
    }
    if (list->Selected() >= 0) {
        const size_t action = ActionOfRow(list->Selected());
        for (const uint32_t input : {list->Input(), kActionInputs - 1 - list->Input()}) {
            if (std::wstring shared = SharedText(action, input); !shared.empty()) {
                return shared;
            }
        }
    }
    return L"Return sets the framed input, Delete clears it. Controllers also play without a "
           L"binding.";
}

// Empty when the binding is the action's alone.
std::wstring InputTab::SharedText(size_t action, uint32_t input) const {
    const std::vector<size_t> sharing = SharingBinding(actions, action, input);
    if (sharing.empty()) {
        return {};
    }
    std::wstring text = BindingName(ActionBinding(action, input)) + L" also does " +
                        InputActions()[sharing.front()].name;
    if (sharing.size() > 1) {
        text += L" and " + std::to_wstring(sharing.size() - 1) + L" more";
    }
    return text + L".";
}

// ---- What changes.

void InputTab::Ask() {
    if (prompt != nullptr || list->Selected() < 0) {
        return;
    }
    const size_t action = ActionOfRow(list->Selected());
    const uint32_t input = list->Input();
    const std::wstring what =
        std::wstring(InputActions()[action].name) + L", " + (input == 0 ? L"Input1" : L"Input2");
    prompt = new BindingPrompt(
        what, BindingName(ActionBinding(action, input)), IsProgramAction(action),
        [this](uint32_t scancode) { return host.UseOfKey(scancode); },
        [this, action, input](std::optional<uint32_t> binding) {
            prompt = nullptr;
            if (binding) {
                Bind(action, input, *binding);
            }
        });
}

void InputTab::Bind(size_t action, uint32_t input, uint32_t binding) {
    said.clear();
    if (ActionBinding(action, input) != binding) {
        before.push_back(TakeBindings());
        SetActionBinding(action, input, binding);
        undo->SetEnabled(true);
    }
    ShowBindings();
}

void InputTab::Clear() {
    if (list->Selected() >= 0) {
        Bind(ActionOfRow(list->Selected()), list->Input(), 0);
    }
}

void InputTab::SetDefaults() {
    before.push_back(TakeBindings());
    SetDefaultBindings();
    if (before.back() == TakeBindings()) {
        before.pop_back();
        said = L"Every action of every machine has the input of a first start already.";
    } else {
        undo->SetEnabled(true);
        said = L"Every action of every machine has the input of a first start. Undo brings yours "
               L"back.";
    }
    ShowBindings();
}

void InputTab::Undo() {
    if (before.empty()) {
        return;
    }
    PutBindings(before.back());
    before.pop_back();
    if (before.empty()) {
        undo->SetEnabled(false);
        list->SetFocus(); // a disabled button has no use for it
    }
    said.clear();
    ShowBindings();
}

void InputTab::ShowJoysticks() {
    std::wstring text;
    for (const SCREEN_JOYSTICK& joystick : host.Joysticks()) {
        text += (text.empty() ? L"" : L"\n\n") + std::wstring(L"Joy") +
                std::to_wstring(joystick.number + 1) + L": " + joystick.name + L"\n" +
                Counted(joystick.axes, L"axis", L"axes") + L", " +
                Counted(joystick.buttons, L"button", L"buttons") + L", " +
                Counted(joystick.hats, L"hat", L"hats");
        if (joystick.player >= 0) {
            text += L"; plays as player " + std::to_wstring(joystick.player + 1);
        }
    }
    if (text.empty()) {
        text = L"No joystick or game controller is connected. One that you connect now can be used "
               L"at once.";
    }
    CGhostMessageBox::Show(L"Joystick Info", text);
}
