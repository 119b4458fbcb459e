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

const MACHINE_FACTS* FindMachineFacts(uint16_t system) {
    return Find([=](const MACHINE_FACTS& machine) { return machine.system == system; });
}

const MACHINE_FACTS* FindMachineFacts(std::string_view shortName) {
    return Find([=](const MACHINE_FACTS& machine) { return machine.shortName == shortName; });
}
