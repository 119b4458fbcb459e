// Loads any bytes as a state of each of the 8-bit Sega machines and runs a frame. The first byte
// selects the machine; the rest is a state or a patch, as whole states are long. A patch has two
// bytes of offset from the end of a valid state, and bytes that replace those of the state from
// there on.
#include "sega8/game_gear.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"

#include "machine_fuzz.h"

#include <array>
#include <vector>

namespace {

template <typename Machine, typename Options>
FUZZ_PLAYER Start(const Options& options, uint16_t system, uint32_t board = 0) {
    // Fills VRAM and RAM with a counter: inc hl; ld (hl),a; out (0xBE),a; inc a; jr.
    std::vector<uint8_t> image = {0x23, 0x77, 0xD3, 0xBE, 0x3C, 0x18, 0xF9};
    image.resize(0xC000, 0);
    return FuzzPlayer(FuzzStart<Machine>(options, system, std::move(image), board));
}

std::vector<FUZZ_PLAYER> StartAll() {
    std::vector<FUZZ_PLAYER> players;
    players.push_back(Start<CSMS>(
        SMS_OPTIONS{
            kSms2Pal, 1, 1, {2,                4},
               {                }
    },
        kSystemMasterSystem));
    players.push_back(Start<CSMS>(
        SMS_OPTIONS{
            kSms1Ntsc, 0, 0, {8,                16},
               {                }
    },
        kSystemMasterSystem));
    players.push_back(Start<CGAMEGEAR>(GEAR_OPTIONS{}, kSystemGameGear));
    players.push_back(Start<CGAMEGEAR>(GEAR_OPTIONS{0, 1, 1, {}}, kSystemGameGear));
    players.push_back(Start<CSEGAE>(std::array<uint8_t, kMachineOptionBytes>{}, kSystemArcade, 1));
    players.push_back(Start<CSEGAE>(std::array<uint8_t, kMachineOptionBytes>{}, kSystemArcade, 4));
    return players;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::vector<FUZZ_PLAYER> players = StartAll();
    constexpr uint8_t kWhole = 0x80; // of the first byte: the rest is the state itself
    if (size < 4) {
        return 0;
    }
    FUZZ_PLAYER& player = players[(data[0] & 0x7F) % players.size()];
    const std::span<const uint8_t> input(data, size);
    // Counted from the end, where the chips are.
    const size_t offset = LoadLittleEndian<uint16_t>(data + 1) % player.good.size();
    const size_t at = player.good.size() - offset;
    static_cast<void>(FuzzState(player, (data[0] & kWhole) != 0
                                            ? std::vector<uint8_t>(data + 1, data + size)
                                            : FuzzPatched(player.good, at, input.subspan(3))));
    return 0;
}
