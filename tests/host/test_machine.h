// The tests' machine: deterministic, small, and able to fail wherever a machine can.
#pragma once

#include "host/machine_list.h"
#include "machine/battery.h"
#include "machine/emu_system.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

// A test's choices for a machine, passed in the option block.
struct TEST_BEHAVIOUR {
    uint8_t failInit = 0;
    uint8_t failSave = 0;
    uint8_t failLoad = 0;
    uint8_t hold = 0;
    uint8_t glasses = 0;     // holds every odd frame, as 3D glasses do
    uint8_t waitsInInit = 0; // each at the gate below
    uint8_t waitsInFrame = 0;
    uint8_t waitsInSave = 0;
    uint8_t rotated = 0;
    uint8_t noisySound = 0; // frames of 600 to 900 pairs, by the machine's own generator
    uint8_t noisyState = 0; // pads the state with bytes that cannot be packed
    uint32_t width = 0;     // of the picture that it claims; 0: the true one
    uint32_t height = 0;
    uint32_t visibleX = 0;
    uint32_t visibleWidth = 0;
    uint32_t sampleCount = 735;
    uint32_t stateBytes = 0; // pads the state to this size
    uint32_t batteryBytes = 0;
    uint32_t endsAtFrame = 0; // 0: never
};
using TestOptions = std::array<uint8_t, kMachineOptionBytes>;
[[nodiscard]] TestOptions MakeOptions(const TEST_BEHAVIOUR& behaviour = {});

class CTestMachine : public CEmuSystem, public CBattery {
public:
    CTestMachine(uint32_t key, uint32_t widthValue, uint32_t heightValue);
    ~CTestMachine() override;

    bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    // Fills the picture with `frame`, the left channel with rising samples, the right with -1.
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    bool LoadState(const uint8_t* data, uint32_t size) override;
    uint32_t StateSize() override;
    void WriteState(StateOut out) override;

    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override { return battery; }
    [[nodiscard]] bool SetBatteryContents(std::span<const uint8_t> bytes) override;
    std::vector<uint8_t> battery; // under the session's lock

    TEST_BEHAVIOUR behaviour;
    std::atomic<uint32_t> frame{0}; // frames since reset; part of the state
    std::atomic<uint32_t> resets{0};
    std::atomic<uint32_t> runs{0};
    std::atomic<uint32_t> pressed{0}; // frames in which the first player's first button was down

    static std::atomic<int32_t> gLive;       // machines that exist
    static std::atomic<int32_t> gCollisions; // calls into a machine during another call

    // Where machines with `waitsInInit` wait until a test opens it.
    static std::atomic<bool> gGateOpen;
    static std::atomic<int32_t> gWaiting; // machines at the gate

private:
    static void WaitAtGate();
    template <typename Visit>
    void Fields(Visit& visit);

    uint32_t frameField = 0;
    uint32_t seed = 1;
    std::array<uint8_t, 64> memory{};
    bool flag = false;
    std::atomic<int32_t> inside{0};
};

// 1: 320 x 240 in ".\Sms"; 4: 160 x 144, less than the static, in ".\megadrive"; 5: cannot be made;
// 6: 320 x 240 in no folder.
[[nodiscard]] const MACHINE_LIST& TestMachines();
extern std::atomic<int32_t> gTablesBuilt;
