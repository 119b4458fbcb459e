#include "machines/machines.h"

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

// The arcade board has no folder, so its saves lie in the program's home itself.
constexpr MACHINE_ENTRY kMachines[] = {
    {1, ".\\sms",       Construct<CSMS>      },
    {2, ".\\gamegear",  Construct<CGAMEGEAR> },
    {4, ".\\megadrive", Construct<CMegaDrive>},
    {5, ".\\nes",       Construct<CNES>      },
    {6, "",             Construct<CSEGAE>    },
};

} // namespace

const MACHINE_LIST& BuiltInMachines() {
    // All other tables of chips are constants or built before `main`.
    static constexpr MACHINE_LIST kList{kMachines, [] {
                                            NesBuildTables();
                                            MdBuildTables();
                                        }};
    return kList;
}
