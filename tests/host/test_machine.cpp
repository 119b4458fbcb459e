#include "host/test_machine.h"

#include "machine/state_piece.h"
#include "settings/bindings.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <thread>

std::atomic<int32_t> CTestMachine::gLive{0};
std::atomic<int32_t> CTestMachine::gCollisions{0};
std::atomic<bool> CTestMachine::gGateOpen{true};
std::atomic<int32_t> CTestMachine::gWaiting{0};
std::atomic<int32_t> gTablesBuilt{0};

namespace {

// Detects two threads inside one machine.
class InsideGuard {
public:
    explicit InsideGuard(std::atomic<int32_t>& counter)
        : inside(counter) {
        if (inside.fetch_add(1) != 0) {
            ++CTestMachine::gCollisions;
        }
    }
    ~InsideGuard() { --inside; }
    InsideGuard(const InsideGuard&) = delete;
    InsideGuard& operator=(const InsideGuard&) = delete;

private:
    std::atomic<int32_t>& inside;
};

std::unique_ptr<CEmuSystem> ConstructLarge(uint32_t key) {
    return std::make_unique<CTestMachine>(key, 320, 240);
}

std::unique_ptr<CEmuSystem> ConstructSmall(uint32_t key) {
    return std::make_unique<CTestMachine>(key, 160, 144);
}

std::unique_ptr<CEmuSystem> ConstructNothing(uint32_t) {
    return nullptr;
}

void CountTables() {
    ++gTablesBuilt;
}

} // namespace

TestOptions MakeOptions(const TEST_BEHAVIOUR& behaviour) {
    TestOptions options{};
    static_assert(sizeof behaviour <= kMachineOptionBytes);
    std::memcpy(options.data(), &behaviour, sizeof behaviour);
    return options;
}

const MACHINE_LIST& TestMachines() {
    static constexpr std::array<MACHINE_ENTRY, 4> kEntries = {
        {
         {1, ".\\Sms", ConstructLarge},
         {4, ".\\megadrive", ConstructSmall},
         {5, ".\\nes", ConstructNothing},
         {6, "", ConstructLarge},
         }
    };
    static MACHINE_LIST list{kEntries, CountTables};
    return list;
}

CTestMachine::CTestMachine(uint32_t key, uint32_t widthValue, uint32_t heightValue)
    : CEmuSystem(key, widthValue, heightValue) {
    ++gLive;
}

CTestMachine::~CTestMachine() {
    --gLive;
}

void CTestMachine::WaitAtGate() {
    ++gWaiting;
    while (!gGateOpen) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    --gWaiting;
}

template <typename Visit>
void CTestMachine::Fields(Visit& visit) {
    visit(frameField);
    visit(seed);
    visit(memory);
    visit(flag);
}

bool CTestMachine::Init(const void* options, CGameFile* const[2]) {
    if (options != nullptr) {
        std::memcpy(&behaviour, options, sizeof behaviour);
    }
    if (behaviour.waitsInInit != 0) {
        WaitAtGate();
    }
    if (behaviour.failInit != 0) {
        EmuSetLastError("this game cannot be run");
        return false;
    }
    battery.assign(behaviour.batteryBytes, 0xFF);
    Reset();
    return true;
}

bool CTestMachine::SetBatteryContents(std::span<const uint8_t> bytes) {
    if (bytes.size() != battery.size()) {
        return false;
    }
    battery.assign(bytes.begin(), bytes.end());
    return true;
}

void CTestMachine::Reset() {
    const InsideGuard guard(inside);
    frameField = 0;
    frame = 0;
    seed = 1;
    memory.fill(0);
    flag = false;
    ++resets;
}

void CTestMachine::RunFrame(EMU_INPUT_STATE*, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) {
    const InsideGuard guard(inside);
    if (behaviour.waitsInFrame != 0) {
        WaitAtGate();
    }
    frame = ++frameField;
    ++runs;
    pressed += InputIsDown(sessionKey, L"SMS P1 BUTTON1") ? 1 : 0;
    seed = seed * 1664525 + 1013904223; // the constants of Numerical Recipes
    memory[frameField % memory.size()] = static_cast<uint8_t>(seed >> 24);
    flag = !flag;
    debugValue = frameField;
    if (frameField == behaviour.endsAtFrame) {
        End("the program has gone wrong");
    }

    video->width = behaviour.width != 0 ? behaviour.width : width;
    video->height = behaviour.height != 0 ? behaviour.height : height;
    video->aspect = 1.5f;
    video->visibleX = behaviour.visibleX;
    video->visibleY = 0;
    video->visibleWidth = behaviour.visibleWidth != 0 ? behaviour.visibleWidth : video->width;
    video->visibleHeight = video->height;
    video->visibleAspect = 1.25f;
    video->hold = behaviour.glasses != 0 ? frameField % 2 : behaviour.hold;
    video->rotated = behaviour.rotated;
    std::fill_n(video->pixels, size_t{width} * height, 0xFF000000 + frameField);

    audio->sampleCount =
        behaviour.noisySound != 0 ? 600 + (seed >> 8) % 300 : behaviour.sampleCount;
    for (uint32_t i = 0; i < std::min(audio->sampleCount, kAudioFramePairs); ++i) {
        audio->samples[size_t{2} * i] = static_cast<int16_t>(frameField * 100 + i);
        audio->samples[size_t{2} * i + 1] = -1;
    }
}

uint32_t CTestMachine::StateSize() {
    if (behaviour.failSave != 0) {
        return 0;
    }
    const uint32_t piece = StatePieceSize([this](auto& visit) { Fields(visit); });
    return std::max(piece, behaviour.stateBytes);
}

bool CTestMachine::LoadState(const uint8_t* data, uint32_t size) {
    const InsideGuard guard(inside);
    if (behaviour.failLoad != 0 || size != StateSize() ||
        StatePieceRead(data, size, [this](auto& visit) { Fields(visit); }) == 0) {
        return false;
    }
    frame = frameField;
    return true;
}

void CTestMachine::WriteState(StateOut out) {
    const InsideGuard guard(inside);
    if (behaviour.waitsInSave != 0) {
        WaitAtGate();
    }
    const uint8_t* const end = out.At() + StateSize();
    out = StatePieceWrite(out, [this](auto& visit) { Fields(visit); });
    std::minstd_rand random(frameField + 1);
    while (out.At() != end) {
        out.PutScalar(static_cast<uint8_t>(behaviour.noisyState != 0 ? random() >> 8 : 0));
    }
}
