// Runs any bytes as a program of the System E board, on both frame loops. The first byte selects the control panel.
#include "sega8/system_e.h"
#include "settings/settings.h"

#include "loops_fuzz.h"
#include "z80_program_fuzz.h"

#include <array>

namespace {

constexpr int kFrames = 4;
constexpr uint32_t kBoards[] = {kBoardAnalog, kBoardJoystick, kBoardDial};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    RegisterDefaultSettings(Settings());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::vector<uint8_t> image =
        FuzzZ80Image({data + 1, size - 1}, {kArcadePortVdp1Data, kArcadePortVdp2Data});
    const uint32_t board = kBoards[data[0] % std::size(kBoards)];
    const std::array<uint8_t, kMachineOptionBytes> options{};
    FuzzLoops([&] { return FuzzStart<CSEGAE>(options, kSystemArcade, image, board); }, kFrames);
    return 0;
}
