#include "host/battery_file.h"

#include "base/files.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_private.h"

#include "machine/battery.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kReadLimit = uint64_t{1} << 20;
constexpr char kSuffix[] = ".sav";

std::atomic<bool> gWrites{true};

using Bytes = std::vector<uint8_t>;

CBattery* BatteryOf(const EMU_THREAD& session) {
    return dynamic_cast<CBattery*>(session.machine.get());
}

// `.\folder\saves\name.zip` becomes `.\folder\saves\name.0123456789ab`.
std::string Stem(const EMU_THREAD& session) {
    const std::string& archive = session.archivePath;
    return archive.substr(0, archive.rfind('.') + 1) + session.stateEntryName;
}

// One that cannot be asked about may well be there; reading it then tells.
bool Exists(const fs::path& path) {
    std::error_code code;
    return fs::status(path, code).type() != fs::file_type::not_found;
}

fs::path FreeName(const std::string& stem, const std::string& word) {
    const auto named = [&](uint32_t number) {
        return ResolvePath(stem + "." + word + "-" + std::to_string(number) + kSuffix);
    };
    uint32_t number = 1;
    std::error_code code;
    // A path that cannot even be asked about ends the search: writing to it then says why.
    while (fs::exists(fs::symlink_status(named(number), code))) {
        ++number;
    }
    return named(number);
}

// Gives a file that is no memory of this game another name.
bool SetAside(const std::string& stem, size_t bytes) {
    const fs::path path = ResolvePath(stem + kSuffix);
    const fs::path aside = FreeName(stem, "damaged");
    const std::string why =
        path.string() + ": not this game's memory (" + std::to_string(bytes) + " bytes); ";
    std::error_code code;
    fs::rename(path, aside, code);
    HostReport(why + (code ? "it cannot be set aside and stays: " + code.message()
                           : "it is kept as " + aside.string()));
    return !code;
}

// Keeps a copy of what somebody else has written.
bool KeepOther(const std::string& stem, const Bytes& content) {
    const std::string path = ResolvePath(stem + kSuffix).string();
    const fs::path aside = FreeName(stem, "other");
    std::string error;
    if (!WriteFile(aside, content, error, WriteMode::kCreate)) {
        HostReport(path + ": somebody else has written it, and no copy can be kept: " + error);
        return false;
    }
    HostReport(path + ": somebody else has written it; a copy is kept as " + aside.string());
    return true;
}

// A write as it is to be done, apart from the session.
struct BATTERY_WRITE {
    std::string stem;
    bool formerKept;
    bool rolledBack;     // the contents are older than what is in the file
    bool fileRolledBack; // so was that
    Bytes expected;      // in the file
    Bytes contents;
};

// The caller holds the session.
BATTERY_WRITE Prepare(EMU_THREAD& session, Bytes contents) {
    BATTERY_STATUS& battery = session.battery;
    return {Stem(session),          battery.formerKept, std::exchange(battery.rolledBack, false),
            battery.fileRolledBack, battery.onDisk,     std::move(contents)};
}

// What the file is about to lose.
bool KeepFormer(const BATTERY_WRITE& write, const fs::path& path) {
    if (!Exists(path)) {
        return true;
    }
    Bytes former;
    std::string error;
    if (!ReadFile(path, former, error, kReadLimit)) {
        HostReport(error);
        return false;
    }
    if (former != write.expected) {
        return KeepOther(write.stem, former);
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

// Gives whether the contents are on the disk now.
bool Write(const BATTERY_WRITE& write) {
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

// The caller holds the session.
bool IsDue(EMU_THREAD& session, const Bytes& contents) {
    BATTERY_STATUS& battery = session.battery;
    if (contents == battery.onDisk) {
        battery.rolledBack = false; // to the same memory
        return false;
    }
    return gWrites && !battery.untouchable && !contents.empty() && contents != battery.refused;
}

// The caller holds the session.
void Note(EMU_THREAD& session, BATTERY_WRITE& write, bool written) {
    BATTERY_STATUS& battery = session.battery;
    if (written) {
        battery.onDisk = std::move(write.contents);
        battery.isFile = true;
        battery.formerKept = true;
        battery.fileRolledBack = write.rolledBack;
        battery.refused.clear();
    } else {
        battery.rolledBack |= write.rolledBack;
        battery.refused = std::move(write.contents); // the same bytes are not tried again
    }
}

} // namespace

void EmuLoadBattery(EMU_THREAD& session) {
    CBattery* const battery = BatteryOf(session);
    if (battery == nullptr) {
        return;
    }
    session.battery.onDisk = battery->BatteryContents();
    const std::string stem = Stem(session);
    const fs::path path = ResolvePath(stem + kSuffix);
    if (session.battery.onDisk.empty() || !Exists(path)) {
        return;
    }
    Bytes bytes;
    std::string error;
    if (!ReadFile(path, bytes, error, kReadLimit)) {
        HostReport(error + "; the game starts without it and it stays as it is");
        session.battery.untouchable = true;
        return;
    }
    if (battery->SetBatteryContents(bytes)) {
        session.battery.onDisk = std::move(bytes);
        session.battery.isFile = true;
        return;
    }
    session.battery.untouchable = !SetAside(stem, bytes.size());
    session.battery.formerKept = true;
}

void EmuBatteryAfterState(EMU_THREAD& session) {
    CBattery* const battery = BatteryOf(session);
    if (battery != nullptr && session.battery.isFile) {
        // It was taken before, and the length is always the same.
        static_cast<void>(battery->SetBatteryContents(session.battery.onDisk));
    }
}

void EmuWriteBatteries(bool write) {
    gWrites = write;
}

void EmuSaveBattery(EMU_THREAD& session) {
    const CBattery* const battery = BatteryOf(session);
    if (battery == nullptr) {
        return;
    }
    session.battery.refused.clear(); // a last try
    Bytes contents = battery->BatteryContents();
    if (IsDue(session, contents)) {
        BATTERY_WRITE write = Prepare(session, std::move(contents));
        const bool written = Write(write);
        Note(session, write, written);
    }
}

void EmuKeepBatteries() {
    struct DUE {
        uint32_t serial;
        BATTERY_WRITE write;
        bool written;
    };
    std::vector<DUE> due;
    EmuForEachSession([&](EMU_THREAD& session) {
        const CBattery* const battery = BatteryOf(session);
        if (battery == nullptr || session.battery.onDisk.empty()) {
            return;
        }
        const SessionHold hold(session);
        Bytes contents = battery->BatteryContents();
        if (IsDue(session, contents)) {
            due.push_back({session.serial, Prepare(session, std::move(contents)), false});
        }
    });
    if (due.empty()) {
        return;
    }
    for (DUE& file : due) {
        file.written = Write(file.write);
    }
    EmuForEachSession([&](EMU_THREAD& session) {
        for (DUE& file : due) {
            if (file.serial == session.serial) {
                const SessionHold hold(session);
                Note(session, file.write, file.written);
            }
        }
    });
}
