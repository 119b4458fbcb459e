// Save archives of any bytes: a small machine loads its state from one, then saves into it.
#include "base/files.h"
#include "host/archive.h"
#include "host/report.h"
#include "host/session.h"
#include "machine/state_piece.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

class CSmallMachine : public CEmuSystem {
public:
    CSmallMachine()
        : CEmuSystem(1, 16, 16) {}

    bool Init(const void*, CGameFile* const[2]) override { return true; }
    void Reset() override {
        counter = 0;
        memory.fill(0);
    }
    void RunFrame(EMU_INPUT_STATE*, EMU_VIDEO_FRAME*, EMU_AUDIO_FRAME*) override {}
    bool LoadState(const uint8_t* data, uint32_t size) override {
        return StatePieceRead(data, size, [this](auto& visit) { Fields(visit); }) == size;
    }
    uint32_t StateSize() override {
        return StatePieceSize([this](auto& visit) { Fields(visit); });
    }
    void WriteState(StateOut out) override {
        StatePieceWrite(out, [this](auto& visit) { Fields(visit); });
    }

private:
    template <typename Visit>
    void Fields(Visit& visit) {
        visit(counter);
        visit(memory);
    }

    uint32_t counter = 7;
    std::array<uint8_t, 8> memory{};
};

// In memory where the platform has such a folder, since every save is flushed to the disk.
fs::path MakeHome() {
    std::error_code code;
    const fs::path memory = "/dev/shm";
    fs::path home = fs::is_directory(memory, code) ? memory : fs::temp_directory_path();
    home /= "ombrelune-fuzz-" + std::to_string(std::rand()) + "-" +
            std::to_string(reinterpret_cast<uintptr_t>(&home));
    fs::create_directories(home / "saves");
    SetHomeFolder(home);
    std::atexit([] {
        std::error_code ignored;
        fs::remove_all(HomeFolder(), ignored);
    });
    return home;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fs::path home = MakeHome();
    HostSetReportSink([](const std::string& message) {
        if (message.empty()) {
            std::abort();
        }
    });
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(home / "saves")) {
        fs::remove(entry.path(), ignored);
    }
    const fs::path archive = home / "saves" / "game.zip";
    {
        std::ofstream file(archive, std::ios::binary);
        file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    EMU_THREAD session;
    session.machine = std::make_unique<CSmallMachine>();
    session.archivePath = "\\saves\\game.zip";
    session.stateEntryName = "a5a5a5a5a5a5";
    EmuLoadFromArchive(session);
    const bool saved = EmuSaveToArchive(session);
    // After a save the state can be loaded, whatever the file was before.
    if (saved && !EmuLoadFromArchive(session)) {
        std::abort();
    }
    return 0;
}
