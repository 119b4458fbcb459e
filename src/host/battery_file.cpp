#include "host/battery_file.h"

#include "base/files.h"
#include "host/battery.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_private.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kReadLimit = uint64_t{1} << 20;
constexpr char kSuffix[] = ".sav";

using Bytes = std::vector<uint8_t>;

CBattery* BatteryOf(const EMU_THREAD& session) {
    return dynamic_cast<CBattery*>(session.machine.get());
}

// `.\folder\saves\name.zip` becomes `.\folder\saves\name.0123456789ab`.
std::string Stem(const EMU_THREAD& session) {
    const std::string& archive = session.archivePath;
    return archive.substr(0, archive.rfind('.') + 1) + session.stateEntryName;
}

bool Exists(const fs::path& path) {
    std::error_code code;
    return fs::status(path, code).type() != fs::file_type::not_found;
}

fs::path FreeName(const std::string& stem, const std::string& word) {
    uint32_t number = 1;
    fs::path aside;
    do {
        aside = ResolvePath(stem + "." + word + "-" + std::to_string(number++) + kSuffix);
    } while (Exists(aside));
    return aside;
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

// What the file is about to lose: as it was found it is kept under one name, and what somebody else has
// written meanwhile, such as the same game on another television, under a name of its own.
bool KeepFormer(const std::string& stem, const fs::path& path, const Bytes& expected,
                bool formerKept) {
    if (!Exists(path)) {
        return true;
    }
    Bytes former;
    std::string error;
    if (!ReadFile(path, former, error, kReadLimit)) {
        HostReport(error);
        return false;
    }
    if (formerKept) {
        return former == expected || KeepOther(stem, former);
    }
    if (!WriteFile(ResolvePath(stem + ".before" + kSuffix), former, error)) {
        HostReport(error);
        return false;
    }
    return true;
}

// A write as it is to be done, apart from the session.
struct BATTERY_WRITE {
    std::string stem;
    bool formerKept;
    Bytes expected; // in the file
    Bytes contents;
};

BATTERY_WRITE Prepare(const EMU_THREAD& session, Bytes contents) {
    return {Stem(session), session.battery.formerKept, session.battery.onDisk, std::move(contents)};
}

// Gives whether the contents are on the disk now.
bool Write(const BATTERY_WRITE& write) {
    const fs::path path = ResolvePath(write.stem + kSuffix);
    if (!KeepFormer(write.stem, path, write.expected, write.formerKept)) {
        return false;
    }
    std::string error;
    if (!WriteFile(path, write.contents, error)) {
        HostReport(error);
        return false;
    }
    return true;
}

bool IsDue(const EMU_THREAD& session, const Bytes& contents) {
    return !session.battery.untouchable && !contents.empty() &&
           contents != session.battery.onDisk && contents != session.battery.refused;
}

void Note(EMU_THREAD& session, Bytes contents, bool written) {
    if (written) {
        session.battery.onDisk = std::move(contents);
        session.battery.formerKept = true;
        session.battery.refused.clear();
    } else {
        session.battery.refused = std::move(contents); // the same bytes are not tried again
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
        return;
    }
    session.battery.untouchable = !SetAside(stem, bytes.size());
    session.battery.formerKept = true;
}

void EmuBatteryAfterState(EMU_THREAD& session) {
    CBattery* const battery = BatteryOf(session);
    if (battery == nullptr || session.battery.untouchable) {
        return;
    }
    std::error_code code;
    const auto written = fs::last_write_time(ResolvePath(Stem(session) + kSuffix), code);
    if (code) {
        return;
    }
    const auto archived = fs::last_write_time(ResolvePath(session.archivePath), code);
    if (!code && written > archived) {
        // Refused only where the file was none of this game's, and its memory is then the state's.
        static_cast<void>(battery->SetBatteryContents(session.battery.onDisk));
    }
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
        Note(session, std::move(write.contents), written);
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
        Bytes contents;
        {
            const SessionHold hold(session);
            contents = battery->BatteryContents();
        }
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
                Note(session, std::move(file.write.contents), file.written);
            }
        }
    });
}
