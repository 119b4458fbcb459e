#include "front/action_list.h"

#include "base/text.h"
#include "facts/machine_facts.h"
#include "front/program_commands.h"
#include "settings/binding_text.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

namespace {

ACTION_LINE LineOf(const INPUT_ACTION& action) {
    ACTION_LINE line;
    line.action = Utf8FromWide(action.name);
    const auto [primary, secondary] = Settings().GetInt2(BindingSetting(action));
    for (const int32_t bound : {primary, secondary}) {
        if (bound != 0) {
            line.inputs.push_back(BindingText(static_cast<uint32_t>(bound)));
        }
    }
    const uint64_t pads = InputPadsOf(action);
    for (uint32_t player = 0; player < kPadPlayers; ++player) {
        for (uint32_t number = 0; number < kPadControls; ++number) {
            const auto control = static_cast<PadControl>(number);
            const uint32_t binding = PadBinding(player, control);
            const bool isBound = binding == static_cast<uint32_t>(primary) ||
                                 binding == static_cast<uint32_t>(secondary);
            if ((pads & PadBit(player, control)) != 0 && !isBound) {
                line.controls.push_back(BindingText(binding));
            }
        }
    }
    return line;
}

ACTION_GROUP GroupOf(const MACHINE_FACTS& machine) {
    ACTION_GROUP group{&machine, {}};
    for (const auto names :
         {machine.consoleActions, machine.playerActions[0], machine.playerActions[1]}) {
        for (const std::wstring_view name : names) {
            for (const INPUT_ACTION& action : InputActions()) {
                if (name == action.name && HasEffect(machine, name)) {
                    group.actions.push_back(LineOf(action));
                }
            }
        }
    }
    return group;
}

} // namespace

std::vector<ACTION_GROUP> ListActions() {
    InputRefreshPadDefaults();
    std::vector<ACTION_GROUP> groups;
    groups.reserve(MachineFacts().size() + 1);
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        groups.push_back(GroupOf(machine));
    }
    ACTION_GROUP& program = groups.emplace_back(ACTION_GROUP{nullptr, {}});
    for (size_t action = 0; action < InputActions().size(); ++action) {
        if (InputOwners()[action] == 0) {
            program.actions.push_back(LineOf(InputActions()[action]));
        }
    }
    return groups;
}

// F10 is read by the screen of the program, and Alt + F4 by the desktop.
std::vector<WINDOW_KEY> ListWindowKeys() {
    std::vector<WINDOW_KEY> keys;
    keys.reserve(ProgramKeys().size() + 2);
    for (const PROGRAM_KEY& key : ProgramKeys()) {
        keys.push_back({key.key, key.name});
    }
    keys.push_back({"F10", "main menu"});
    keys.push_back({"Alt + F4", "end"});
    return keys;
}
