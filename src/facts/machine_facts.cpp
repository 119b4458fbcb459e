#include "facts/machine_facts.h"

#include "facts/arcade_facts.h"
#include "facts/game_gear_facts.h"
#include "facts/mega_drive_facts.h"
#include "facts/nes_facts.h"
#include "facts/sms_facts.h"

#include <algorithm>

namespace {

constexpr MACHINE_FACTS kMachines[] = {kSmsFacts, kGearFacts, kNesFacts, kArcadeFacts, kMdFacts};

template <typename Test>
const MACHINE_FACTS* Find(Test test) {
    const auto* const found = std::find_if(std::begin(kMachines), std::end(kMachines), test);
    return found == std::end(kMachines) ? nullptr : found;
}

} // namespace

std::span<const MACHINE_FACTS> MachineFacts() {
    return kMachines;
}

bool HasEffect(const MACHINE_FACTS& machine, std::wstring_view action) {
    const auto names = [action](std::span<const std::wstring_view> actions) {
        return std::ranges::find(actions, action) != actions.end();
    };
    if (names(machine.consoleActions)) {
        return machine.readsConsoleActions;
    }
    return (names(machine.playerActions[0]) || names(machine.playerActions[1])) &&
           !names(machine.unconnectedActions);
}

const MACHINE_FACTS* FindMachineFacts(uint16_t system) {
    return Find([=](const MACHINE_FACTS& machine) { return machine.system == system; });
}

const MACHINE_FACTS* FindMachineFacts(std::string_view shortName) {
    return Find([=](const MACHINE_FACTS& machine) { return machine.shortName == shortName; });
}
