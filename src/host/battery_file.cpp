#include "host/battery_file.h"

#include "base/files.h"
#include "host/kept_copy.h"
#include "host/report.h"
#include "machine/battery.h"

#include <atomic>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kReadLimit = uint64_t{1} << 20;
constexpr char kSuffix[] = ".sav";

std::atomic<bool> gWrites{true};

using Bytes = std::vector<uint8_t>;

// Sets aside a file that cannot be this game's memory.
bool SetAside(const std::string& stem, size_t bytes) {
    const fs::path path = ResolvePath(stem + kSuffix);
    const fs::path aside = FreeAsidePath(path, "damaged");
    const std::string why =
        path.string() + ": not this game's memory (" + std::to_string(bytes) + " bytes); ";
    std::error_code code;
    fs::rename(path, aside, code);
    HostReport(why + (code ? "it cannot be set aside and stays: " + code.message()
                           : "it is kept as " + aside.string()));
    return !code;
}

// Keeps a copy of what another program has written.
bool KeepOther(const fs::path& file, const Bytes& content) {
    const std::string path = file.string();
    const fs::path aside = FreeAsidePath(file, "other");
    std::string error;
    if (!WriteFile(aside, content, error, WriteMode::kCreate)) {
        HostReport(path + ": another program has written it, and no copy can be kept: " + error);
        return false;
    }
    HostReport(path + ": another program has written it; a copy is kept as " + aside.string());
    return true;
}

// Keeps a copy of what the write will replace, unless there is one. False if no copy can be made.
bool KeepFormer(const BATTERY_WRITE& write, const fs::path& path) {
    if (!FileMayExist(path)) {
        return true;
    }
    Bytes former;
    std::string error;
    if (!ReadFile(path, former, error, kReadLimit)) {
        HostReport(error);
        return false;
    }
    if (former != write.expected) {
        return KeepOther(path, former);
    }
    if (write.formerKept && (!write.rolledBack || write.fileRolledBack)) {
        return true;
    }
    const char* const word = write.formerKept ? ".before-state" : ".before";
    if (!WriteFile(ResolvePath(write.stem + word + kSuffix), former, error)) {
        HostReport(error);
        return false;
    }
    return true;
}

} // namespace

void BatteryLoad(BATTERY_FILE& file, CBattery& memory) {
    file.onDisk = memory.BatteryContents();
    const fs::path path = ResolvePath(file.stem + kSuffix);
    if (file.onDisk.empty() || !FileMayExist(path)) {
        return;
    }
    Bytes bytes;
    std::string error;
    if (!ReadFile(path, bytes, error, kReadLimit)) {
        HostReport(error + "; the game starts without it and it stays as it is");
        file.untouchable = true;
        return;
    }
    if (memory.SetBatteryContents(bytes)) {
        file.onDisk = std::move(bytes);
        file.isFile = true;
        return;
    }
    file.untouchable = !SetAside(file.stem, bytes.size());
    file.formerKept = true;
}

void BatteryPutBack(const BATTERY_FILE& file, CBattery& memory) {
    if (file.isFile) {
        // The machine took it before, and the length never changes.
        static_cast<void>(memory.SetBatteryContents(file.onDisk));
    }
}

void EmuWriteBatteries(bool write) {
    gWrites = write;
}

std::optional<BATTERY_WRITE> BatteryDue(BATTERY_FILE& file, Bytes contents) {
    if (contents == file.onDisk) {
        file.rolledBack = false; // the restored memory is the file's
        return std::nullopt;
    }
    if (!gWrites || file.untouchable || contents.empty() || contents == file.refused) {
        return std::nullopt;
    }
    return BATTERY_WRITE{
        file.stem,           file.formerKept, std::exchange(file.rolledBack, false),
        file.fileRolledBack, file.onDisk,     std::move(contents)};
}

bool BatteryWrite(const BATTERY_WRITE& write) {
    const fs::path path = ResolvePath(write.stem + kSuffix);
    if (!KeepFormer(write, path)) {
        return false;
    }
    std::string error;
    if (!WriteFile(path, write.contents, error)) {
        HostReport(error);
        return false;
    }
    return true;
}

void BatteryWritten(BATTERY_FILE& file, BATTERY_WRITE write, bool written) {
    if (written) {
        file.onDisk = std::move(write.contents);
        file.isFile = true;
        file.formerKept = true;
        file.fileRolledBack = write.rolledBack;
        file.refused.clear();
    } else {
        file.rolledBack |= write.rolledBack;
        file.refused = std::move(write.contents); // these bytes are not tried again
    }
}

void BatterySave(BATTERY_FILE& file, const CBattery& memory) {
    file.refused.clear(); // a last try
    if (std::optional<BATTERY_WRITE> write = BatteryDue(file, memory.BatteryContents())) {
        const bool written = BatteryWrite(*write);
        BatteryWritten(file, std::move(*write), written);
    }
}
