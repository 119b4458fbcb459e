#include "machines/machines.h"

#include "facts/arcade_facts.h"
#include "facts/game_gear_facts.h"
#include "facts/mega_drive_facts.h"
#include "facts/nes_facts.h"
#include "facts/sms_facts.h"
#include "megadrive/mega_drive.h"
#include "nes/nes.h"
#include "sega8/game_gear.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"

#include <memory>

namespace {

template <typename Machine>
std::unique_ptr<CEmuSystem> Construct(uint32_t sessionKey) {
    return std::make_unique<Machine>(sessionKey);
}

template <typename Machine>
constexpr MACHINE_ENTRY Entry(const MACHINE_FACTS& facts) {
    return {facts.system, facts.saveFolder, Construct<Machine>};
}

constexpr MACHINE_ENTRY kMachines[] = {
    Entry<CSMS>(kSmsFacts), Entry<CGAMEGEAR>(kGearFacts), Entry<CMegaDrive>(kMdFacts),
    Entry<CNES>(kNesFacts), Entry<CSEGAE>(kArcadeFacts),
};

} // namespace

const MACHINE_LIST& BuiltInMachines() {
    // All other chips' tables are constants or built before `main`.
    static constexpr MACHINE_LIST kList{kMachines, [] {
                                            NesBuildTables();
                                            MdBuildTables();
                                        }};
    return kList;
}
