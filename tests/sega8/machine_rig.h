// For the tests of the 8-bit machines: games made of bytes, small programs, frames.
#pragma once

#include "base/bytes.h"
#include "formats/game_file.h"
#include "machine/emu_system.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

// A Z80 program, byte by byte.
class Program {
public:
    Program& Bytes(std::initializer_list<int> values) {
        for (const int value : values) {
            code.push_back(static_cast<uint8_t>(value));
        }
        return *this;
    }
    // Fills up to an address.
    Program& At(uint16_t address) {
        code.resize(address, 0);
        return *this;
    }
    Program& Out(int port, int value) { return Bytes({0x3E, value, 0xD3, port}); }
    // IN A,(port); LD (address),A
    Program& In(int port, int address) {
        return Bytes({0xDB, port, 0x32, address & 0xFF, address >> 8});
    }
    Program& Store(int address, int value) {
        return Bytes({0x3E, value, 0x32, address & 0xFF, address >> 8});
    }
    Program& VdpRegister(int port, int index, int value) {
        return Out(port, value).Out(port, 0x80 | index);
    }
    Program& Stop() { return Bytes({0x18, 0xFE}); }

    [[nodiscard]] uint16_t Here() const { return static_cast<uint16_t>(code.size()); }
    // The image, padded with zeroes.
    [[nodiscard]] std::vector<uint8_t> Image(size_t bytes = 0x8000) const {
        std::vector<uint8_t> image = code;
        image.resize(bytes, 0);
        return image;
    }

private:
    std::vector<uint8_t> code;
};

// A game of one piece with a record of this machine, selected.
template <typename Record>
CGameFile MakeGame(uint16_t system, const std::vector<uint8_t>& image, const Record& record,
                   const std::vector<uint8_t>& opcodes = {}) {
    CGameFile game;
    game.Create(false, system);
    MACHINE_RECORD raw{};
    std::memcpy(raw.bytes, &record, sizeof record);
    game.AddRom("v1.0", {}, static_cast<uint32_t>(image.size()));
    std::vector<uint8_t> data = image;
    if (!opcodes.empty()) {
        game.AddRom("opcodes", {}, static_cast<uint32_t>(opcodes.size()));
        data.insert(data.end(), opcodes.begin(), opcodes.end());
    }
    game.AddNameFromTitle("Test Game", 1, 1, raw);
    game.LinkRom(0, 0);
    EXPECT_TRUE(game.SetData(std::move(data)));
    game.selectedName = 0;
    return game;
}

inline CGameFile SmsGame(const std::vector<uint8_t>& image, uint16_t board = 1, uint8_t kind = 0) {
    SMS_RECORD record{};
    std::memcpy(record.tag, "SMS0", 4);
    record.board = board;
    record.kind = kind;
    return MakeGame(kSystemMasterSystem, image, record);
}

inline CGameFile GearGame(const std::vector<uint8_t>& image, uint16_t board = 1) {
    GAG_RECORD record{};
    std::memcpy(record.tag, "GAG0", 4);
    record.board = board;
    return MakeGame(kSystemGameGear, image, record);
}

inline CGameFile ArcadeGame(const std::vector<uint8_t>& image, uint32_t board,
                            const std::vector<uint8_t>& opcodes = {}) {
    ARC_RECORD record{};
    std::memcpy(record.tag, "ARC0", 4);
    record.board = board;
    return MakeGame(kSystemArcade, image, record, opcodes);
}

// The same game with a default record.
inline CGameFile WithDefaultRecord(CGameFile game, const std::vector<uint8_t>& image) {
    std::vector<uint8_t> records = game.Serialise(false);
    records.resize(records.size() - game.FixedRecordSize());
    records.insert(records.end(), {'G', 'D', 'F', '0'});
    StoreLittleEndian(records.data() + 4, static_cast<uint32_t>(records.size())); // headerSize
    EXPECT_TRUE(game.Parse(records.data(), records.size(), false));
    EXPECT_TRUE(game.SetData(image));
    game.selectedName = 0;
    return game;
}

// 16 KB banks, each filled with its number.
inline std::vector<uint8_t> NumberedBanks(uint32_t count) {
    std::vector<uint8_t> image(size_t{count} * 0x4000);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i / 0x4000);
    }
    return image;
}

inline constexpr uint32_t kRigKey = 7;

// The settings of a first run, among them the sound quality and the bindings; once.
inline void RegisterSettings() {
    static const bool registered = [] {
        RegisterDefaultSettings(Settings());
        return true;
    }();
    static_cast<void>(registered);
}

// The host's side of a machine.
struct MACHINE_RIG {
    MACHINE_RIG() {
        RegisterSettings();
        InputClearAll();
        InputSetActiveKey(kRigKey);
        InputSetWalkingRoom(false);
        video.pixels = pixels.data();
        audio.samples = samples.data();
        audio.sampleRate = 44100;
    }
    ~MACHINE_RIG() { InputClearAll(); }
    MACHINE_RIG(const MACHINE_RIG&) = delete;
    MACHINE_RIG& operator=(const MACHINE_RIG&) = delete;

    void Frames(CEmuSystem& machine, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            Frame(machine);
        }
    }
    void Frame(CEmuSystem& machine) {
        machine.RunFrame(&input, &video, &audio);
        pictureHash = Hash(pixels.data(), size_t{video.width} * video.height * 4);
        soundHash = Hash(samples.data(), size_t{audio.sampleCount} * 4);
    }

    // Presses the key that an action is bound to by default; actions of player 2 get a key first.
    static void Press(std::wstring_view action, bool down = true) {
        const std::wstring name = L"INPUT " + std::wstring(action);
        int32_t code = Settings().GetInt2(name).first;
        if (code == 0) {
            code = 300 + nextFreeKey++;
            Settings().SetInt2(name, code, 0);
        }
        InputKeyChanged(static_cast<uint32_t>(code), down);
    }
    static void Release(std::wstring_view action) { Press(action, false); }

    static uint64_t Hash(const void* data, size_t size) {
        const auto* bytes = static_cast<const uint8_t*>(data);
        uint64_t hash = 0xCBF29CE484222325;
        for (size_t i = 0; i < size; ++i) {
            hash = (hash ^ bytes[i]) * 0x100000001B3;
        }
        return hash;
    }

    alignas(32) std::array<uint32_t, size_t{512} * 320> pixels{};
    alignas(32) std::array<int16_t, size_t{kAudioFramePairs} * 2> samples{};
    EMU_VIDEO_FRAME video{};
    EMU_AUDIO_FRAME audio{};
    EMU_INPUT_STATE input{};
    uint64_t pictureHash = 0;
    uint64_t soundHash = 0;

private:
    static inline int32_t nextFreeKey = 0;
};

// A machine with its game, ready to run.
template <typename Machine, typename Options>
std::unique_ptr<Machine> StartMachine(const Options& options, CGameFile& game,
                                      CGameFile* second = nullptr) {
    RegisterSettings();
    auto machine = std::make_unique<Machine>(kRigKey);
    CGameFile* const games[2] = {&game, second};
    EXPECT_TRUE(machine->Init(&options, games)) << EmuLastError();
    return machine;
}
