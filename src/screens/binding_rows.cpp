#include "screens/binding_rows.h"

#include "facts/arcade_facts.h"
#include "facts/game_gear_facts.h"
#include "facts/mega_drive_facts.h"
#include "facts/nes_facts.h"
#include "facts/sms_facts.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr INPUT_SYSTEM kSystems[] = {
    {L"Arcade",              &kArcadeFacts},
    {L"Game Gear",           &kGearFacts  },
    {L"Nintendo",            &kNesFacts   },
    {L"Sega Master System",  &kSmsFacts   },
    {L"Genesis / Megadrive", &kMdFacts    },
};

// The program's own actions that are read while the player walks; the others are read while a game is played.
constexpr std::wstring_view kWalking[] = {L"Move Forward", L"Move Back", L"Move Left",
                                          L"Move Right",   L"Use",       L"Turn Off",
                                          L"Slow Movement"};
constexpr std::wstring_view kAlways[] = {L"Mute", L"Volume Down", L"Volume Up"};

bool IsOneOf(std::span<const std::wstring_view> names, size_t action) {
    return std::ranges::find(names, std::wstring_view(InputActions()[action].name)) != names.end();
}

// Whether there is a moment at which both are read.
bool ReadTogether(size_t action, size_t other) {
    return IsOneOf(kAlways, action) || IsOneOf(kAlways, other) ||
           IsOneOf(kWalking, action) == IsOneOf(kWalking, other);
}

size_t ActionOfName(std::wstring_view name) {
    const auto actions = InputActions();
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [&](const INPUT_ACTION& row) { return row.name == name; });
    return static_cast<size_t>(found - actions.begin());
}

} // namespace

std::span<const INPUT_SYSTEM> InputSystems() {
    return kSystems;
}

bool IsProgramAction(size_t action) {
    return InputOwners()[action] == 0;
}

std::vector<size_t> ActionsOf(const MACHINE_FACTS& facts) {
    std::vector<size_t> actions;
    for (const auto names :
         {facts.consoleActions, facts.playerActions[0], facts.playerActions[1]}) {
        for (const std::wstring_view name : names) {
            actions.push_back(ActionOfName(name));
        }
    }
    for (size_t action = 0; action < InputActions().size(); ++action) {
        if (IsProgramAction(action)) {
            actions.push_back(action);
        }
    }
    return actions;
}

uint32_t ActionBinding(size_t action, uint32_t input) {
    const auto [primary, secondary] = Settings().GetInt2(BindingSetting(InputActions()[action]));
    return static_cast<uint32_t>(input == 0 ? primary : secondary);
}

void SetActionBinding(size_t action, uint32_t input, uint32_t binding) {
    const std::wstring setting = BindingSetting(InputActions()[action]);
    auto [primary, secondary] = Settings().GetInt2(setting);
    (input == 0 ? primary : secondary) = static_cast<int32_t>(binding);
    Settings().SetInt2(setting, primary, secondary);
}

void SetDefaultBindings() {
    for (const INPUT_ACTION& action : InputActions()) {
        Settings().SetInt2(BindingSetting(action), static_cast<int32_t>(action.defaultBinding), 0);
    }
}

BindingSnapshot TakeBindings() {
    BindingSnapshot snapshot;
    for (const INPUT_ACTION& action : InputActions()) {
        snapshot.push_back(Settings().GetInt2(BindingSetting(action)));
    }
    return snapshot;
}

void PutBindings(const BindingSnapshot& snapshot) {
    for (size_t action = 0; action < snapshot.size(); ++action) {
        const auto& [primary, secondary] = snapshot[action];
        Settings().SetInt2(BindingSetting(InputActions()[action]), primary, secondary);
    }
}

std::vector<size_t> SharingBinding(std::span<const size_t> actions, size_t action, uint32_t input) {
    std::vector<size_t> sharing;
    const uint32_t binding = ActionBinding(action, input);
    for (const size_t other : actions) {
        const bool same = ActionBinding(other, 0) == binding || ActionBinding(other, 1) == binding;
        if (binding != 0 && other != action && same && ReadTogether(other, action)) {
            sharing.push_back(other);
        }
    }
    return sharing;
}
