// Runs any bytes as a program of the Master System or the Game Gear, on both frame loops. The first byte selects
// the console.
#include "sega8/game_gear.h"
#include "sega8/sms.h"
#include "settings/settings.h"

#include "loops_fuzz.h"
#include "z80_program_fuzz.h"

#include <array>

namespace {

constexpr int kFrames = 5;
constexpr uint8_t kVideoPort = 0xBE;

constexpr std::array<SMS_OPTIONS, 4> kSmsKinds = {
    {
     {kSms2Ntsc, 0, 0, {1, 1}, {}},
     {kSmsJapanese, 1, 0, {8, 16}, {}},
     {kSms2Pal, 1, 0, {2, 4}, {}},
     {kSms1Ntsc, 0, 1, {16, 2}, {}},
     }
};
constexpr std::array<GEAR_OPTIONS, 2> kGearKinds = {
    {{0, 0, 1, {}}, {1, 1, 0, {}}}
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    RegisterDefaultSettings(Settings());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::vector<uint8_t> image = FuzzZ80Image({data + 1, size - 1}, {kVideoPort});
    const size_t kind = data[0] % (kSmsKinds.size() + kGearKinds.size());
    if (kind < kSmsKinds.size()) {
        FuzzLoops([&] { return FuzzStart<CSMS>(kSmsKinds[kind], kSystemMasterSystem, image); },
                  kFrames);
    } else {
        const GEAR_OPTIONS& options = kGearKinds[kind - kSmsKinds.size()];
        FuzzLoops([&] { return FuzzStart<CGAMEGEAR>(options, kSystemGameGear, image); }, kFrames);
    }
    return 0;
}
